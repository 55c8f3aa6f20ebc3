# What other projects find the libraries by: a CMake package, pkg-config files; and the way to take
# everything away again.

include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/varn_filepackaging)
varn_install(dev libvarn-filepackaging-dev
  EXPORT varn_filepackaging NAMESPACE varn:: DESTINATION ${package_dir})
configure_package_config_file(
  cmake/varn_filepackagingConfig.cmake.in
  ${PROJECT_BINARY_DIR}/varn_filepackagingConfig.cmake
  INSTALL_DESTINATION ${package_dir}
  PATH_VARS CMAKE_INSTALL_BINDIR)
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/varn_filepackagingConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
varn_install(dev libvarn-filepackaging-dev
  FILES
    ${PROJECT_BINARY_DIR}/varn_filepackagingConfig.cmake
    ${PROJECT_BINARY_DIR}/varn_filepackagingConfigVersion.cmake
    cmake/OrvGenerate.cmake
  DESTINATION ${package_dir})

# The prefix is where the file lies, so that it may be moved.
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH VARN_PREFIX_FROM_PKGCONFIG
  ${CMAKE_INSTALL_PREFIX}/${pkgconfig_dir} ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" VARN_PREFIX_FROM_PKGCONFIG ${VARN_PREFIX_FROM_PKGCONFIG})
set(orbel_package liborbel-dev)
set(varn_filepackaging_package libvarn-filepackaging-dev)
foreach(name orbel varn_filepackaging)
  configure_file(cmake/${name}.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
  varn_install(dev ${${name}_package}
    FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${pkgconfig_dir})
endforeach()

if(PROJECT_IS_TOP_LEVEL)
  add_custom_target(uninstall
    COMMAND ${CMAKE_COMMAND} -P ${CMAKE_CURRENT_LIST_DIR}/uninstall.cmake ${PROJECT_BINARY_DIR}
    VERBATIM)
endif()
