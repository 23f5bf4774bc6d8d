# The Debian package: `cpack -G DEB` in a release build. Times in it are the release's, so that two
# builds of the same sources give the same bytes; the variable is the one other tools go by.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kestrin)
set(CPACK_PACKAGE_VENDOR "The Kestrin authors")
set(CPACK_PACKAGE_CONTACT "${KESTRIN_MAINTAINER}")
set(CPACK_PACKAGE_HOMEPAGE_URL "${KESTRIN_WEB}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "plan events and be reminded of them")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "Birthdays, bills, backups: written down once, with a rule for when they occur,
events are announced at the right second, after suspends, crashes and changes
of the clocks. An event can warn beforehand, nag afterwards, show a message,
run a command or open a file; add-ons bring further actions.
.
Also contains kestrinctl, which looks into event sets without a screen, and
what is needed to build add-ons.")
# Installed as by `cmake --install` with a DESTDIR: what holds a path then holds that of the prefix.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_INSTALLED_DIRECTORIES "${PROJECT_BINARY_DIR}/install/doc" usr/share/doc/kestrin)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# Sorts below a package that a distribution makes itself.
set(CPACK_DEBIAN_PACKAGE_RELEASE 0cpack1)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# What the file type, the menu's action and the start by the bus rest on; the start at login asks
# for nothing but a session bus.
set(CPACK_DEBIAN_PACKAGE_DEPENDS
    "dbus-user-session | dbus-session-bus, desktop-file-utils, hicolor-icon-theme, libglib2.0-bin, shared-mime-info")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-wayland")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/data/debian/conffiles")
file(WRITE ${PROJECT_BINARY_DIR}/install/epoch.cmake
     "if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})\n  set(ENV{SOURCE_DATE_EPOCH} ${KESTRIN_RELEASED_EPOCH})\nendif()\n")
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_BINARY_DIR}/install/epoch.cmake)
include(CPack)
