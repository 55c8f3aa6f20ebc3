# How things are installed: each in a component of `cmake --install` (runtime, dev or python), and
# once more in the Debian package that holds it, which is a component of its own for cpack.

# varn_install(<component> <package> <arguments of install()...>)
function(varn_install component package)
  if(VARN_INSTALL)
    install(${ARGN} COMPONENT ${component})
    install(${ARGN} COMPONENT ${package} EXCLUDE_FROM_ALL)
  endif()
endfunction()

# varn_find_libraries_from(<target> <folder>): once installed in the folder, the target finds the
# project's libraries wherever the prefix is moved. In /usr the loader finds them itself.
function(varn_find_libraries_from target folder)
  if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    file(RELATIVE_PATH to_libraries "/${folder}" "/${CMAKE_INSTALL_LIBDIR}")
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN/${to_libraries}")
  endif()
endfunction()

# varn_install_library(<target> <package> <development package>)
function(varn_install_library target package development)
  if(NOT VARN_INSTALL)
    return()
  endif()
  varn_find_libraries_from(${target} ${CMAKE_INSTALL_LIBDIR})
  install(TARGETS ${target} EXPORT varn_filepackaging
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev)
  install(TARGETS ${target} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    COMPONENT ${package} EXCLUDE_FROM_ALL NAMELINK_SKIP)
  install(TARGETS ${target} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    COMPONENT ${development} EXCLUDE_FROM_ALL NAMELINK_ONLY)
endfunction()
