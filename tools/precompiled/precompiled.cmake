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

tarn_precompile(standard jet season rollup)
tarn_precompile(widgets platform review_window)
tarn_precompiled_by(platform base datafile bram_import worksheets shell)
tarn_precompile(charts plots)
tarn_precompile(window_tests platform_tests)
tarn_precompiled_by(platform_tests base_tests datafile_tests import_tests worksheets_tests shell_tests gui_tests)
tarn_precompile(standard review reportpdf jetsql fcdtool)
tarn_precompile(tests test_support)
tarn_precompiled_by(test_support jet_tests season_tests review_tests rollup_tests jetsql_tests)
tarn_precompiled_by(platform_tests tarnreview_tests plots_tests)
