# Runs when Kestrin is installed: writes the files that hold a path, and the links in bin/, for the
# prefix and the DESTDIR of that moment. Wants KESTRIN_DATA, the folder of the templates, and
# KESTRIN_MADE, a folder to write in.
set(prefix "${CMAKE_INSTALL_PREFIX}")
if(prefix MATCHES "[\"'`$\\%\n]")
  message(FATAL_ERROR "Kestrin cannot be installed in ${prefix}: choose a name without quotes, $, % and \\")
endif()

# A command as desktop entries, the bus and systemd read it.
function(command_of program result)
  set(path "${prefix}/lib/kestrin/${program}")
  if(path MATCHES "[^A-Za-z0-9_./+-]")
    set(path "\"${path}\"")
  endif()
  set(${result} "${path}" PARENT_SCOPE)
endfunction()

# Macros, since file(INSTALL) writes the manifest into a variable of its own scope.
macro(install_configured file destination)
  get_filename_component(name ${file} NAME)
  configure_file("${KESTRIN_DATA}/${file}.in" "${KESTRIN_MADE}/${name}" @ONLY)
  file(INSTALL "${KESTRIN_MADE}/${name}" DESTINATION "${destination}")
endmacro()

macro(install_link program)
  file(CREATE_LINK ../lib/kestrin/${program} "${KESTRIN_MADE}/bin/${program}" SYMBOLIC)
  file(INSTALL "${KESTRIN_MADE}/bin/${program}" DESTINATION "${prefix}/bin")
endmacro()

# No session looks for the start at login below a prefix: it has one place for all users and one for
# each. systemd looks for user units in places of its own; where it would not find the unit, the bus
# must not ask it.
set(autostart /etc/xdg/autostart)
set(units "${prefix}/lib/systemd/user")
set(found_by_systemd "^/usr(/local)?$")
set(person "$ENV{HOME}")
if(person AND NOT person STREQUAL "/")
  string(FIND "${prefix}/" "${person}/" at)
  if(at EQUAL 0)
    set(autostart "${person}/.config/autostart")
    if(NOT "$ENV{XDG_CONFIG_HOME}" STREQUAL "")
      set(autostart "$ENV{XDG_CONFIG_HOME}/autostart")
    endif()
    set(units "${prefix}/share/systemd/user")
    if(prefix STREQUAL "${person}/.local")
      set(found_by_systemd ".")
    endif()
  endif()
endif()
set(KESTRIN_SYSTEMD_SERVICE "# Where systemd finds no unit below this prefix, the bus starts the program itself.")
if(prefix MATCHES "${found_by_systemd}")
  set(KESTRIN_SYSTEMD_SERVICE "SystemdService=kestrin-background.service")
endif()

set(KESTRIN_FOLDER "${prefix}/lib/kestrin")
command_of(kestrin KESTRIN_COMMAND)
command_of(KestrinBackground KESTRIN_BACKGROUND_COMMAND)
file(REMOVE_RECURSE "${KESTRIN_MADE}")
file(MAKE_DIRECTORY "${KESTRIN_MADE}/bin")
install_link(kestrin)
install_link(kestrinctl)
install_configured(applications/vnd.ZR.Kestrin.desktop "${prefix}/share/applications")
install_configured(dbus/vnd.ZR.Kestrin.service "${prefix}/share/dbus-1/services")
install_configured(dbus/vnd.ZR.KestrinBackground.service "${prefix}/share/dbus-1/services")
install_configured(systemd/kestrin-background.service "${units}")
install_configured(autostart/vnd.ZR.Kestrin.Background.desktop "${autostart}")
# Debian's zsh looks elsewhere for what packages bring.
set(functions site-functions)
if(prefix STREQUAL "/usr" AND EXISTS /etc/debian_version)
  set(functions vendor-completions)
endif()
file(INSTALL "${KESTRIN_DATA}/completions/zsh/_kestrinctl" DESTINATION "${prefix}/share/zsh/${functions}")
file(REMOVE_RECURSE "${KESTRIN_MADE}")  # made by root, in a folder of somebody else

include("${CMAKE_CURRENT_LIST_DIR}/UpdateDatabases.cmake")
