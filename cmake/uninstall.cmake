# Removes what the last `cmake --install` of each component put in place, below DESTDIR if that is
# set: the files, what Python compiled of them, and the project's own folders once they are empty.
#
#   cmake -P uninstall.cmake BUILD_DIR

file(GLOB manifests ${CMAKE_ARGV3}/install_manifest*.txt)
if(NOT manifests)
  message(FATAL_ERROR "Nothing was installed from ${CMAKE_ARGV3}")
endif()

set(folders)
foreach(manifest IN LISTS manifests)
  file(STRINGS ${manifest} paths ENCODING UTF-8)
  foreach(path IN LISTS paths)
    file(REMOVE "$ENV{DESTDIR}${path}")
    cmake_path(GET path PARENT_PATH folder)
    list(APPEND folders "${folder}")
  endforeach()
  file(REMOVE ${manifest})
endforeach()

# Inner folders come before their parents.
list(REMOVE_DUPLICATES folders)
list(SORT folders ORDER DESCENDING)
list(FILTER folders INCLUDE REGEX "/(orbel|orv|varn|varn_filepackaging)(/|$)")
foreach(folder IN LISTS folders)
  file(REMOVE_RECURSE "$ENV{DESTDIR}${folder}/__pycache__")
  file(GLOB rest "$ENV{DESTDIR}${folder}/*")
  if(NOT rest)
    file(REMOVE_RECURSE "$ENV{DESTDIR}${folder}")
  endif()
endforeach()
