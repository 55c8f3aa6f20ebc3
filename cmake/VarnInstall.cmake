# What `cmake --install` gives: the headers, both libraries, a CMake package and pkg-config files.

include(CMakePackageConfigHelpers)

install(TARGETS orbel varn_filepackaging
  EXPORT varn_filepackaging
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/orbel include/varn DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/varn_filepackaging)
install(EXPORT varn_filepackaging NAMESPACE varn:: DESTINATION ${package_dir})
configure_package_config_file(
  cmake/varn_filepackagingConfig.cmake.in
  ${PROJECT_BINARY_DIR}/varn_filepackagingConfig.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/varn_filepackagingConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/varn_filepackagingConfig.cmake
  ${PROJECT_BINARY_DIR}/varn_filepackagingConfigVersion.cmake
  DESTINATION ${package_dir})

foreach(name orbel varn_filepackaging)
  configure_file(cmake/${name}.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
