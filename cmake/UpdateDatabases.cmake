# Tells the desktop's databases below CMAKE_INSTALL_PREFIX what has been installed or removed. A
# package has them updated by the packages that own them.
function(update_database folder)
  list(JOIN ARGN " " command)
  find_program(tool ${ARGV1} NO_CACHE)
  if(tool)
    execute_process(COMMAND ${ARGN} "${folder}" RESULT_VARIABLE status ERROR_QUIET)
  endif()
  if(NOT tool OR status)
    message(STATUS "Please run: ${command} ${folder}")
  endif()
endfunction()

if("$ENV{DESTDIR}" STREQUAL "")
  set(share "${CMAKE_INSTALL_PREFIX}/share")
  update_database("${share}/mime" update-mime-database)
  update_database("${share}/applications" update-desktop-database)
  # Without a cache the folders themselves are read; one that is there would hide new icons.
  if(EXISTS "${share}/icons/hicolor/icon-theme.cache")
    update_database("${share}/icons/hicolor" gtk-update-icon-cache -q -f -t)
  endif()
endif()
