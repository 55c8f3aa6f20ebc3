# Python packages with a native part. The build tree holds them ready to use in `python/`:
# PYTHONPATH=build/<preset>/python.

# The distribution's interpreter, whatever stands first in the PATH: its packages are what the
# set-up script installs.
if(NOT DEFINED Python_EXECUTABLE AND EXISTS /usr/bin/python3)
  set(Python_EXECUTABLE /usr/bin/python3)
endif()
find_package(Python 3.11 COMPONENTS Interpreter Development.Module)
set(PYBIND11_FINDPYTHON ON)
find_package(pybind11 CONFIG QUIET)
find_package(EXPAT QUIET)
find_package(RapidJSON QUIET)
find_path(XXHASH_INCLUDE_DIR xxhash.h)
mark_as_advanced(XXHASH_INCLUDE_DIR)
find_package(tomlplusplus QUIET)
find_package(PkgConfig QUIET)
if(PkgConfig_FOUND)
  pkg_check_modules(YAML QUIET IMPORTED_TARGET yaml-0.1)
  pkg_check_modules(RE2 QUIET IMPORTED_TARGET re2)
endif()
if(NOT Python_Development.Module_FOUND OR NOT pybind11_FOUND OR NOT EXPAT_FOUND
    OR NOT RapidJSON_FOUND OR NOT tomlplusplus_FOUND OR NOT YAML_FOUND OR NOT RE2_FOUND
    OR NOT XXHASH_INCLUDE_DIR)
  message(WARNING "Python development files, pybind11, expat, RapidJSON, re2, toml++, libyaml or "
    "xxhash are missing: leaving out the Python packages orbel and orv")
  set(VARN_PYTHON_PACKAGES OFF)
  return()
endif()
set(VARN_PYTHON_PACKAGES ON)

# Where Debian's Python looks below each prefix.
set(python_version ${Python_VERSION_MAJOR}.${Python_VERSION_MINOR})
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  set(python_version ${Python_VERSION_MAJOR})
endif()
set(VARN_PYTHON_DIR "" CACHE STRING
  "Where Python packages are installed, from the prefix; the distribution's folder when empty")
set(varn_python_dir ${VARN_PYTHON_DIR})
if(NOT varn_python_dir)
  set(varn_python_dir lib/python${python_version}/dist-packages)
endif()

# varn_python_package(<name> <package> MODULES <.py and other files> NATIVE <sources>
# [LIBRARIES ...]): the Python package of this folder, which the Debian package holds; its native
# part is the submodule `_native`, and `_version` is generated.
function(varn_python_package name package)
  cmake_parse_arguments(PACKAGE "" "" "MODULES;NATIVE;LIBRARIES" ${ARGN})
  set(target ${name}_native)
  # Its own flags for link-time optimisation draw a warning from g++.
  set(CMAKE_INTERPROCEDURAL_OPTIMIZATION OFF)
  pybind11_add_module(${target} MODULE ${PACKAGE_NATIVE})
  varn_target(${target})
  target_link_libraries(${target} PRIVATE ${PACKAGE_LIBRARIES})
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR})
  set_target_properties(${target} PROPERTIES
    OUTPUT_NAME _native
    LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/python/${name}
    INTERPROCEDURAL_OPTIMIZATION_RELEASE ${VARN_LINK_TIME_OPTIMIZATION})
  varn_find_libraries_from(${target} ${varn_python_dir}/${name})
  varn_install(python ${package} TARGETS ${target} LIBRARY DESTINATION ${varn_python_dir}/${name})
  set(version_module ${PROJECT_BINARY_DIR}/python/${name}/_version.py)
  file(CONFIGURE OUTPUT ${version_module} CONTENT "__version__ = \"@PROJECT_VERSION@\"\n" @ONLY)
  varn_install(python ${package} FILES ${version_module} DESTINATION ${varn_python_dir}/${name})
  foreach(module ${PACKAGE_MODULES})
    configure_file(${module} ${PROJECT_BINARY_DIR}/python/${name}/${module} COPYONLY)
    get_filename_component(folder ${module} DIRECTORY)
    varn_install(python ${package}
      FILES ${module} DESTINATION ${varn_python_dir}/${name}/${folder})
  endforeach()
endfunction()

# What a test of Python code runs with: the build tree's packages, and under the sanitizers their
# run-time library ahead of the interpreter, which is built without them; what the interpreter never
# frees is no leak of ours.
set(VARN_PYTHON_ENVIRONMENT
  PYTHONPATH=${PROJECT_BINARY_DIR}/python PYTHONDONTWRITEBYTECODE=1 PYTHONMALLOC=malloc)
if(VARN_SANITIZE)
  foreach(library libasan.so libstdc++.so)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${library}
      OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
    list(APPEND preloaded ${path})
  endforeach()
  list(JOIN preloaded " " preloaded)
  list(APPEND VARN_PYTHON_ENVIRONMENT "LD_PRELOAD=${preloaded}" ASAN_OPTIONS=detect_leaks=0)
endif()

# varn_python_test(<name> <file or folder of this folder>): one run of pytest.
function(varn_python_test name path)
  add_test(NAME ${name}
    COMMAND ${Python_EXECUTABLE} -m pytest -q -p no:cacheprovider
      ${CMAKE_CURRENT_SOURCE_DIR}/${path})
  set_tests_properties(${name} PROPERTIES ENVIRONMENT "${VARN_PYTHON_ENVIRONMENT}")
endfunction()
