# Debian packages, by cpack, from a tree that is configured for the prefix /usr.

if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  return()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "The maintainers <maintainers@varn-filepackaging.example>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
# Each package has its own.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE varn-filepackaging)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
# What one package needs of another is the same version; the rest is found by dpkg-shlibdeps.
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})

set(debian_dir ${PROJECT_SOURCE_DIR}/packaging/debian)
set(debian_changelog ${PROJECT_BINARY_DIR}/debian/changelog)
configure_file(${debian_dir}/changelog.in ${debian_changelog} @ONLY)
execute_process(COMMAND gzip --best --no-name --force --keep ${debian_changelog}
  COMMAND_ERROR_IS_FATAL ANY)

# varn_debian_package(<package> <section> <summary> <description> [SAME_VERSION <packages>]
# [DEPENDS <others>] [RECOMMENDS <others>]): a package of the component of its name.
macro(varn_debian_package package section summary description)
  cmake_parse_arguments(DEBIAN "" "RECOMMENDS" "SAME_VERSION;DEPENDS" ${ARGN})
  string(TOUPPER ${package} component)
  list(APPEND CPACK_COMPONENTS_ALL ${package})
  list(JOIN DEBIAN_DEPENDS ", " depends)
  set(CPACK_COMPONENT_${component}_DEPENDS ${DEBIAN_SAME_VERSION})
  set(CPACK_DEBIAN_${component}_PACKAGE_NAME ${package})
  set(CPACK_DEBIAN_${component}_PACKAGE_SECTION ${section})
  set(CPACK_DEBIAN_${component}_PACKAGE_DEPENDS "${depends}")
  set(CPACK_DEBIAN_${component}_PACKAGE_RECOMMENDS "${DEBIAN_RECOMMENDS}")
  set(CPACK_DEBIAN_${component}_DESCRIPTION "${summary}\n${description}")
  install(FILES ${debian_dir}/copyright ${debian_changelog}.gz
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${package}
    COMPONENT ${package} EXCLUDE_FROM_ALL)
endmacro()

# varn_debian_library_package(<target> <as varn_debian_package>): tells what to depend on when
# something is linked with the library, and lets the dynamic linker learn of it.
macro(varn_debian_library_package target package section summary description)
  varn_debian_package(${package} ${section} "${summary}" "${description}" ${ARGN})
  set(control_dir ${PROJECT_BINARY_DIR}/debian/${package})
  file(WRITE ${control_dir}/shlibs
    "lib${target} ${PROJECT_VERSION_MAJOR} ${package} (>= ${PROJECT_VERSION})\n")
  file(WRITE ${control_dir}/triggers "activate-noawait ldconfig\n")
  set(CPACK_DEBIAN_${component}_PACKAGE_CONTROL_EXTRA ${control_dir}/shlibs ${control_dir}/triggers)
endmacro()

# varn_debian_python_package(<as varn_debian_package>): compiles its modules when installed and
# removes what was compiled with it.
macro(varn_debian_python_package package section summary description)
  varn_debian_package(${package} ${section} "${summary}" "${description}" ${ARGN})
  set(debian_package ${package})
  foreach(script postinst prerm)
    configure_file(${debian_dir}/${script}.in ${PROJECT_BINARY_DIR}/debian/${package}/${script}
      @ONLY FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
        GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
    list(APPEND CPACK_DEBIAN_${component}_PACKAGE_CONTROL_EXTRA
      ${PROJECT_BINARY_DIR}/debian/${package}/${script})
  endforeach()
endmacro()

varn_debian_library_package(orbel liborbel1 libs
  "host object system with packages, classes and handles"
  "Orbel lets a C++ program show its objects to scripts, as packages of classes\n\
with properties and methods, and carries values and errors between the two."
  SAME_VERSION)
varn_debian_package(liborbel-dev libdevel
  "host object system with packages, classes and handles (development)"
  "The headers and the pkg-config file of Orbel, which shows objects of a C++\n\
program to scripts."
  SAME_VERSION liborbel1 DEPENDS "libboost-dev (>= 1.74)")
varn_debian_library_package(varn_filepackaging libvarn-filepackaging1 libs
  "packages generated C text into files, section by section"
  "A C code generator adds each piece of text to a named section of a file held in\n\
memory; the library writes the sections of every file in the order of C."
  SAME_VERSION liborbel1)
varn_debian_package(libvarn-filepackaging-dev libdevel
  "packages generated C text into files (development)"
  "The headers, the CMake package and the pkg-config file of the library that\n\
packages generated C text into files, section by section."
  SAME_VERSION libvarn-filepackaging1 liborbel-dev
  RECOMMENDS "orv (= ${PROJECT_VERSION})")
if(NOT VARN_PYTHON_PACKAGES)
  include(CPack)
  return()
endif()

math(EXPR next_python_minor "${Python_VERSION_MINOR} + 1")
set(python_depends "python3 (>= ${Python_VERSION_MAJOR}.${Python_VERSION_MINOR})"
  "python3 (<< ${Python_VERSION_MAJOR}.${next_python_minor})")
varn_debian_python_package(python3-orbel python
  "Python binding of the host object system Orbel"
  "Python sees each package of a host module as a module, and each class as a\n\
Python class, built from the definitions of the host itself."
  SAME_VERSION liborbel1 DEPENDS ${python_depends}
  RECOMMENDS "libvarn-filepackaging1 (= ${PROJECT_VERSION})")
varn_debian_python_package(orv devel
  "template engine that packages generated C text into files"
  "The command orv renders Jinja2 templates with models in JSON, YAML, TOML, CSV or\n\
XML and puts what they print into named sections of C files."
  SAME_VERSION libvarn-filepackaging1 python3-orbel
  DEPENDS ${python_depends} "python3-jinja2 (>= 3.1)" python3-jsonschema python3-tqdm
  RECOMMENDS python3-pygments)
include(CPack)
