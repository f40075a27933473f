# What an installed engine consists of: headers, the library, its description for CMake and for
# pkg-config, and the two commands.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS jet jet_c EXPORT jetTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT jet
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT jet NAMELINK_COMPONENT jet
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT jet)
install(DIRECTORY include/jet DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT jet)
if(JET_TOOLS)
  install(TARGETS jetdoctor jetdump RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
endif()

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/jet)
install(EXPORT jetTargets NAMESPACE jet:: FILE jetTargets.cmake DESTINATION ${package_folder}
  COMPONENT jet)
configure_package_config_file(cmake/jetConfig.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/jetConfig.cmake
  INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/jetConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/jetConfig.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/jetConfigVersion.cmake
  DESTINATION ${package_folder} COMPONENT jet)

# The prefix is derived from where the description lies, so that the folder can be moved.
string(REGEX REPLACE "[^/]+" ".." back_to_prefix ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
foreach(library jet jet_c)
  configure_file(cmake/jet.pc.in ${CMAKE_CURRENT_BINARY_DIR}/${library}.pc @ONLY)
endforeach()
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/jet.pc ${CMAKE_CURRENT_BINARY_DIR}/jet_c.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT jet)
