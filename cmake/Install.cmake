# What is installed, and where: docs/installing.md has the table. Whatever holds a path, and the links
# in bin/, is made by InstallPaths.cmake when Kestrin is installed, not when it is configured.
set(home lib/kestrin)
set(data ${PROJECT_SOURCE_DIR}/data)
set(made ${PROJECT_BINARY_DIR}/install)

install(TARGETS kestrin KestrinBackground KestrinProbe kestrinctl RUNTIME DESTINATION ${home})
install(TARGETS Notification LIBRARY DESTINATION ${home}/add-ons)
install(FILES "docs/Kestrin documentation.html" DESTINATION ${home})
install(DIRECTORY docs/pictures DESTINATION ${home})
install(FILES data/mime/vnd.ZR.Kestrin.xml DESTINATION share/mime/packages)
install(FILES data/completions/bash/kestrinctl DESTINATION share/bash-completion/completions)
install(FILES data/completions/fish/kestrinctl.fish DESTINATION share/fish/vendor_completions.d)

file(READ LICENSE license)
string(REGEX REPLACE "^.*authors\n\n" "" license "${license}")
string(STRIP "${license}" license)
string(REPLACE "\n" "\n " license "${license}")
string(REPLACE "\n \n" "\n .\n" KESTRIN_LICENSE " ${license}")
foreach(file metainfo/vnd.zr.Kestrin.metainfo.xml man/kestrin.1 man/kestrinctl.1
             man/KestrinBackground.1)
  configure_file(${data}/${file}.in ${made}/${file} @ONLY)
endforeach()
configure_file(${data}/debian/copyright.in ${made}/doc/copyright @ONLY)
configure_file(${data}/debian/changelog.in ${made}/changelog.Debian @ONLY)
install(FILES ${made}/metainfo/vnd.zr.Kestrin.metainfo.xml DESTINATION share/metainfo)

# Icons in the sizes that desktops ask for without a renderer of their own.
find_program(RSVG_CONVERT rsvg-convert REQUIRED)
function(install_icon kind name)
  set(drawing ${data}/icons/${name}.svg)
  set(hicolor share/icons/hicolor)
  install(FILES ${drawing} DESTINATION ${hicolor}/scalable/${kind})
  foreach(size 16 22 24 32 48 64 128 256)
    set(picture ${made}/icons/${size}/${name}.png)
    file(MAKE_DIRECTORY ${made}/icons/${size})
    add_custom_command(OUTPUT ${picture} DEPENDS ${drawing}
                       COMMAND ${RSVG_CONVERT} -w ${size} -h ${size} -o ${picture} ${drawing})
    install(FILES ${picture} DESTINATION ${hicolor}/${size}x${size}/${kind})
    set_property(GLOBAL APPEND PROPERTY kestrin_made ${picture})
  endforeach()
endfunction()
install_icon(apps vnd.ZR.Kestrin)
install_icon(mimetypes application-x-vnd.ZR-KestrinEventSet)

# Manual pages and the package's changes are kept compressed; -n leaves name and time out.
find_program(GZIP gzip REQUIRED)
function(compress source result)
  add_custom_command(OUTPUT ${result} DEPENDS ${source} COMMAND ${GZIP} -9nc ${source} > ${result})
  set_property(GLOBAL APPEND PROPERTY kestrin_made ${result})
endfunction()
foreach(page kestrin kestrinctl KestrinBackground)
  compress(${made}/man/${page}.1 ${made}/man/${page}.1.gz)
  install(FILES ${made}/man/${page}.1.gz DESTINATION share/man/man1)
endforeach()
compress(${made}/changelog.Debian ${made}/doc/changelog.Debian.gz)
get_property(kestrin_made GLOBAL PROPERTY kestrin_made)
add_custom_target(kestrin_made ALL DEPENDS ${kestrin_made})

# For writers of add-ons: find_package(kestrin) and the target kestrin::add_on.
include(CMakePackageConfigHelpers)
install(TARGETS kestrin_add_on EXPORT kestrin COMPONENT add_ons INCLUDES DESTINATION include)
install(EXPORT kestrin NAMESPACE kestrin:: FILE kestrinConfig.cmake
        DESTINATION share/cmake/kestrin COMPONENT add_ons)
write_basic_package_version_file(${made}/kestrinConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion ARCH_INDEPENDENT)
install(FILES ${made}/kestrinConfigVersion.cmake DESTINATION share/cmake/kestrin COMPONENT add_ons)
install(DIRECTORY include/kestrin DESTINATION include COMPONENT add_ons)

install(CODE "set(KESTRIN_DATA \"${data}\")\nset(KESTRIN_MADE \"${made}/paths\")")
install(SCRIPT cmake/InstallPaths.cmake)

add_custom_target(uninstall COMMAND ${CMAKE_COMMAND} -P ${PROJECT_SOURCE_DIR}/cmake/Uninstall.cmake
                  WORKING_DIRECTORY ${PROJECT_BINARY_DIR} USES_TERMINAL)
