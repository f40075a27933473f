# Where its library's headers are precompiled, GCC 12 follows what happens to memory into that library and
# takes correct code there for a mistake. The builds without compile the same files with these warnings.
function(tarn_without_false_warnings target)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    foreach(warning restrict free-nonheap-object array-bounds stringop-overflow stringop-overread
        maybe-uninitialized)
      target_compile_options(${target} PRIVATE -Wno-${warning})
    endforeach()
  endif()
endfunction()

# Compiles the headers that nearly every file of a target reads once for it. Only a build that is to be
# quick asks for it: the others show that each file includes what it uses.
function(tarn_precompile headers)
  foreach(target ${ARGN})
    if(TARGET ${target})
      target_precompile_headers(${target} PRIVATE ${CMAKE_SOURCE_DIR}/tools/precompiled/${headers}.h)
      tarn_without_false_warnings(${target})
    endif()
  endforeach()
endfunction()

# The same with what another target compiled; what is defined for both has to be the same.
function(tarn_precompiled_by other)
  foreach(target ${ARGN})
    if(TARGET ${target})
      target_precompile_headers(${target} REUSE_FROM ${other})
      tarn_without_false_warnings(${target})
    endif()
  endforeach()
endfunction()

# Compiles the files of each folder together, ten at a time: nearly all that a file takes is what the others
# read too. Those after ALONE have a name of their own that another file of the folder has as well, or classes with
# parts that no other file may know, which GCC warns of in a file that is included.
function(tarn_compile_together target)
  cmake_parse_arguments(TOGETHER "" "" "ALONE" ${ARGN})
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
  get_target_property(sources ${target} SOURCES)
  list(FILTER sources INCLUDE REGEX "\\.cpp$")
  foreach(source ${sources})
    cmake_path(GET source FILENAME name)
    if(NOT name IN_LIST TOGETHER_ALONE)
      cmake_path(GET source PARENT_PATH folder)
      string(MD5 key ${folder})
      math(EXPR group "${files_${key}}+0" )
      math(EXPR files_${key} "${group}+1")
      math(EXPR group "${group}/10")
      cmake_path(GET folder FILENAME folder_name)
      set_source_files_properties(${source} TARGET_DIRECTORY ${target} PROPERTIES
        UNITY_GROUP ${folder_name}_${group})
    endif()
  endforeach()
endfunction()

tarn_precompile(standard jet)
tarn_precompile(widgets platform)
tarn_precompiled_by(platform base datafile bram_import worksheets shell)
tarn_precompile(window_tests platform_tests)
tarn_precompiled_by(platform_tests base_tests datafile_tests import_tests worksheets_tests shell_tests gui_tests)
tarn_precompile(tests test_support)
tarn_precompiled_by(test_support jet_tests season_tests review_tests rollup_tests jetsql_tests)
tarn_precompiled_by(platform_tests tarnreview_tests plots_tests)
if(WIN32)
  # Code for programs and for libraries is compiled alike there.
  tarn_precompile(standard jet_tool_parts)
  tarn_precompiled_by(jet_tool_parts jetdoctor jetdump jet_conformance season review rollup fcdtool
    jetsql_command program_files make_template make_units make_samples)
  tarn_precompiled_by(jet jetsql)  # both show nothing that they do not name
  tarn_precompiled_by(platform tarnhelp plots tarnplots review_window tarntour)
else()
  tarn_precompile(standard season rollup review reportpdf jetsql fcdtool)
  tarn_precompile(widgets plots review_window)
endif()

tarn_compile_together(jet ALONE rule.cpp)
if(TARGET jet_tests)
  tarn_compile_together(jet_tests ALONE cascades_test.cpp changed_file_test.cpp crash_test.cpp elsewhere_test.cpp
    large_transaction_test.cpp log_test.cpp opening_test.cpp options_test.cpp pieces_test.cpp relations_test.cpp
    repair_test.cpp row_test.cpp side_files_test.cpp)
endif()
if(TARGET platform)
  tarn_compile_together(review ALONE rules_values.cpp)
  tarn_compile_together(rollup ALONE postgres_schema.cpp sqlite_destination.cpp)
  tarn_compile_together(reportpdf ALONE table_shape.cpp)
  tarn_compile_together(fcdtool)
  tarn_compile_together(platform)
  tarn_compile_together(datafile)
  tarn_compile_together(worksheets ALONE frm3SRMasterAdd.cpp)
  tarn_compile_together(plots ALONE Figures.cpp)
  tarn_compile_together(review_window ALONE ComparePage.cpp FindingsPage.cpp frmNewYear.cpp frmReview.cpp)
endif()
