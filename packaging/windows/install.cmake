# What is installed on Windows: one folder that holds all, because the programs look for what is theirs beside
# themselves. The libraries that they need are gathered by collect.py.
set(built ${CMAKE_BINARY_DIR}/TARNPrep)

install(TARGETS tarnprep tarnreview fcdtool jetsql_command jetdoctor jetdump RUNTIME DESTINATION .
  COMPONENT windows)
install(TARGETS tarnhelp tarnplots tarnpdf jetsql LIBRARY DESTINATION . COMPONENT windows)
install(FILES ${built}/FCD.new ${built}/fcdname.dat ${built}/TARNPlus.hlp DESTINATION . COMPONENT windows)
install(DIRECTORY ${built}/translations ${built}/Costs DESTINATION . COMPONENT windows
  PATTERN "*-log" EXCLUDE PATTERN "*-lck" EXCLUDE)
install(FILES packaging/windows/README.txt DESTINATION . COMPONENT windows)
install(FILES LICENSE DESTINATION . RENAME LICENSE.txt COMPONENT windows)
install(FILES plots/LICENSE DESTINATION . RENAME LICENSE.charts.txt COMPONENT windows)
install(FILES CHANGELOG.md DESTINATION . RENAME CHANGELOG.txt COMPONENT windows)
