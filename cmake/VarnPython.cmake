# Python packages with a native part. The build tree holds them ready to use in `python/`:
# PYTHONPATH=build/<preset>/python.

set(VARN_PYTHON_DIR "lib/python${Python_VERSION_MAJOR}.${Python_VERSION_MINOR}/dist-packages"
  CACHE STRING "Where Python packages are installed, from the prefix")

# varn_python_package(<name> MODULES <.py and other files> NATIVE <sources> [LIBRARIES ...]): the
# package of this folder; its native part is the submodule `_native`.
function(varn_python_package name)
  cmake_parse_arguments(PACKAGE "" "" "MODULES;NATIVE;LIBRARIES" ${ARGN})
  set(target ${name}_native)
  pybind11_add_module(${target} MODULE ${PACKAGE_NATIVE})
  varn_target(${target})
  target_link_libraries(${target} PRIVATE ${PACKAGE_LIBRARIES})
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR})
  file(RELATIVE_PATH to_libraries "/${VARN_PYTHON_DIR}/${name}" "/${CMAKE_INSTALL_LIBDIR}")
  set_target_properties(${target} PROPERTIES
    OUTPUT_NAME _native
    LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/python/${name}
    INSTALL_RPATH "$ORIGIN/${to_libraries}")
  install(TARGETS ${target} LIBRARY DESTINATION ${VARN_PYTHON_DIR}/${name})
  foreach(module ${PACKAGE_MODULES})
    configure_file(${module} ${PROJECT_BINARY_DIR}/python/${name}/${module} COPYONLY)
    get_filename_component(folder ${module} DIRECTORY)
    install(FILES ${module} DESTINATION ${VARN_PYTHON_DIR}/${name}/${folder})
  endforeach()
endfunction()
