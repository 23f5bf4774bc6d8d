# The programs lie together in lib/kestrin, where the application looks for its deliverer, its
# add-ons and its help; bin/ has the ways in.
set(home ${CMAKE_INSTALL_LIBDIR}/kestrin)
set(KESTRIN_FOLDER ${CMAKE_INSTALL_FULL_LIBDIR}/kestrin)

install(TARGETS kestrin KestrinBackground RUNTIME DESTINATION ${home})
install(TARGETS kestrinctl RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(CODE "
  set(bin \"\$ENV{DESTDIR}${CMAKE_INSTALL_FULL_BINDIR}\")
  file(MAKE_DIRECTORY \"\${bin}\")
  file(RELATIVE_PATH target \"${CMAKE_INSTALL_FULL_BINDIR}\" \"${KESTRIN_FOLDER}/kestrin\")
  file(CREATE_LINK \"\${target}\" \"\${bin}/kestrin\" SYMBOLIC)")

function(kestrin_install_configured file destination)
  get_filename_component(name ${file} NAME_WLE)
  configure_file(${PROJECT_SOURCE_DIR}/data/${file} ${PROJECT_BINARY_DIR}/data/${name} @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/data/${name} DESTINATION ${destination})
endfunction()

kestrin_install_configured(dbus/vnd.ZR.Kestrin.service.in ${CMAKE_INSTALL_DATADIR}/dbus-1/services)
kestrin_install_configured(dbus/vnd.ZR.KestrinBackground.service.in
                           ${CMAKE_INSTALL_DATADIR}/dbus-1/services)
kestrin_install_configured(systemd/kestrin-background.service.in lib/systemd/user)
kestrin_install_configured(autostart/vnd.ZR.Kestrin.Background.desktop.in
                           ${CMAKE_INSTALL_FULL_SYSCONFDIR}/xdg/autostart)
install(FILES data/applications/vnd.ZR.Kestrin.desktop
        DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES data/mime/vnd.ZR.Kestrin.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages)
install(DIRECTORY include/kestrin DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES data/icons/vnd.ZR.Kestrin.svg
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES "docs/Kestrin documentation.html" DESTINATION ${home})
install(DIRECTORY docs/pictures DESTINATION ${home})
