# What is installed, and where: the packages are built from these rules, and `cmake --install build`
# puts the same under any prefix.
#
#   lib/tarnprep   the program folder, from which each user's own folder of data files is made
#   bin            a launcher for each program with a window; the commands
#   share          menu entries, file type, icons, man pages, notices
#   lib, include   the data engine for programs of others (component jet)
include(GNUInstallDirs)
set(program_folder lib/tarnprep)
set(built ${CMAKE_BINARY_DIR}/TARNPrep)

install(TARGETS tarnprep tarnreview fcdtool RUNTIME DESTINATION ${program_folder} COMPONENT program)
install(TARGETS tarnhelp tarnplots tarnpdf jetsql
  LIBRARY DESTINATION ${program_folder} COMPONENT program)
install(FILES ${built}/FCD.new ${built}/fcdname.dat ${built}/TARNPlus.hlp
  DESTINATION ${program_folder} COMPONENT program)
install(DIRECTORY ${built}/translations DESTINATION ${program_folder} COMPONENT program)
# Without what a trial run left there.
install(DIRECTORY ${built}/Costs DESTINATION ${program_folder} COMPONENT program
  PATTERN "*-log" EXCLUDE PATTERN "*-lck" EXCLUDE)
# The launcher knows by it that an upgrade has come.
file(WRITE ${CMAKE_BINARY_DIR}/VERSION "${PROJECT_VERSION}\n")
install(FILES ${CMAKE_BINARY_DIR}/VERSION DESTINATION ${program_folder} COMPONENT launcher)
foreach(program tarnprep tarnreview)
  install(PROGRAMS packaging/launcher DESTINATION ${CMAKE_INSTALL_BINDIR} RENAME ${program}
    COMPONENT launcher)
endforeach()

install(TARGETS fcdtool jetsql_command RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
install(FILES packaging/completion/fcdtool
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT tools)

install(FILES packaging/tarnprep.desktop packaging/tarnreview.desktop
  DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT desktop)
install(FILES packaging/tarnprep-mime.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages
  RENAME tarnprep.xml COMPONENT desktop)
install(FILES packaging/tarnprep.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo
  RENAME org.tarnprep.tarnprep.metainfo.xml COMPONENT desktop)
set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
install(FILES packaging/icons/tarnprep.svg packaging/icons/tarnreview.svg
  DESTINATION ${icons}/scalable/apps COMPONENT desktop)
# In the usual sizes too, for the programs and for their files.
find_program(RSVG_CONVERT rsvg-convert)
if(RSVG_CONVERT)
  install(CODE "
    foreach(side 16 24 32 48 64 128 256)
      foreach(icon apps/tarnprep apps/tarnreview mimetypes/application-x-tarn-prep)
        set(from tarnprep)
        if(icon MATCHES tarnreview)
          set(from tarnreview)
        endif()
        set(to \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${icons}/\${side}x\${side}/\${icon}.png\")
        get_filename_component(folder \"\${to}\" DIRECTORY)
        file(MAKE_DIRECTORY \"\${folder}\")
        execute_process(COMMAND \"${RSVG_CONVERT}\" -w \${side} -h \${side}
          \"${CMAKE_SOURCE_DIR}/packaging/icons/\${from}.svg\" -o \"\${to}\" COMMAND_ERROR_IS_FATAL ANY)
      endforeach()
    endforeach()" COMPONENT desktop)
endif()

file(GLOB man_pages CONFIGURE_DEPENDS packaging/man/*.1)
install(FILES ${man_pages} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT documents)
install(FILES LICENSE CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/tarnprep
  COMPONENT documents)
install(FILES plots/LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/tarnprep
  RENAME LICENSE.charts COMPONENT documents)
