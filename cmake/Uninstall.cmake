# Removes what install_manifest.txt of the working folder names, and the folders that were Kestrin's
# alone. DESTDIR counts as it did when it was installed.
file(STRINGS install_manifest.txt files)
set(CMAKE_INSTALL_PREFIX "")
foreach(file ${files})
  file(REMOVE "$ENV{DESTDIR}${file}")
  if(file MATCHES "^(.*)/lib/kestrin/kestrin$")
    set(CMAKE_INSTALL_PREFIX "${CMAKE_MATCH_1}")
  endif()
endforeach()
foreach(folder lib/kestrin/pictures lib/kestrin include/kestrin share/cmake/kestrin)
  # Add-ons that somebody put there stay.
  file(GLOB_RECURSE left "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}/${folder}/*")
  if(NOT left)
    file(REMOVE_RECURSE "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}/${folder}")
  endif()
endforeach()
include("${CMAKE_CURRENT_LIST_DIR}/UpdateDatabases.cmake")
