# What every desktop takes is installed by any `cmake --install`; the component "debian" is for the package alone.

# SOURCE_DATE_EPOCH sets the day, and a package of the same source and day has the same bytes.
string(TIMESTAMP MURMELI_RELEASE_DAY "%Y-%m-%d" UTC)
string(TIMESTAMP MURMELI_RELEASE_DATE "%a, %d %b %Y 00:00:00 +0000" UTC)

# The same as of the login agent on macOS; desktops call the program that runs by it.
set(MURMELI_APPLICATION_ID com.valdor.quillet.app)
set(MURMELI_HOMEPAGE "")
if(MURMELI_WEB_ORIGIN MATCHES "^https://")
    set(MURMELI_HOMEPAGE "<url type=\"homepage\">${MURMELI_WEB_ORIGIN}</url>")
endif()
set(metainfo ${CMAKE_CURRENT_BINARY_DIR}/${MURMELI_APPLICATION_ID}.metainfo.xml)
configure_file(murmeli.metainfo.xml.in ${metainfo} @ONLY)
configure_file(debian/changelog.in ${CMAKE_CURRENT_BINARY_DIR}/changelog @ONLY)

foreach(paper ${CMAKE_CURRENT_SOURCE_DIR}/murmeli.1 ${CMAKE_CURRENT_BINARY_DIR}/changelog)
    cmake_path(GET paper FILENAME name)
    set(packed ${CMAKE_CURRENT_BINARY_DIR}/${name}.gz)
    add_custom_command(OUTPUT ${packed} COMMAND gzip -9nc ${paper} > ${packed} DEPENDS ${paper} VERBATIM)
    list(APPEND papers ${packed})
endforeach()
add_custom_target(murmeli_papers ALL DEPENDS ${papers})

set_target_properties(murmeli PROPERTIES INSTALL_RPATH "") # it brings no libraries along
install(TARGETS murmeli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES murmeli.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications RENAME ${MURMELI_APPLICATION_ID}.desktop)
configure_file(debian/dbus.service.in ${CMAKE_CURRENT_BINARY_DIR}/${MURMELI_APPLICATION_ID}.service @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${MURMELI_APPLICATION_ID}.service DESTINATION ${CMAKE_INSTALL_DATADIR}/dbus-1/services)
install(FILES icons/murmeli.svg icons/murmeli-recording.svg icons/murmeli-recording-dim.svg
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES icons/murmeli-idle-symbolic.svg icons/murmeli-processing-symbolic.svg
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/symbolic/apps)
install(FILES ${metainfo} DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/murmeli.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

install(FILES completions/murmeli.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME murmeli)
install(FILES completions/_murmeli DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
install(FILES completions/murmeli.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)

install(FILES debian/autostart.desktop DESTINATION /etc/xdg/autostart RENAME murmeli.desktop
    COMPONENT debian EXCLUDE_FROM_ALL)
install(FILES debian/copyright ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/murmeli
    COMPONENT debian EXCLUDE_FROM_ALL)
install(FILES debian/lintian-overrides DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides RENAME murmeli
    COMPONENT debian EXCLUDE_FROM_ALL)

set(CPACK_GENERATOR DEB)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_SET_DESTDIR ON) # for the folder outside of the prefix
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_COMPONENTS_ALL Unspecified debian)
set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SECTION non-free/sound)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_SOURCE_DIR}/debian/conffiles)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Murmeli is the face of a meeting recorder: an icon in the tray shows whether
the recorder is idle, recording or writing up a meeting, a panel under it
starts and stops a recording, and a window shows the meetings with their
protocols and analyses. It speaks Russian and English.
.
The recorder itself is not part of this package: at the first start a setup
offers to install it in the user's home folder.")

# What the program links is found by dpkg-shlibdeps. This it loads or starts while it runs.
set(depends
    qml6-module-qtqml qml6-module-qtqml-models qml6-module-qtqml-workerscript qml6-module-qtquick
    qml6-module-qtquick-controls qml6-module-qtquick-layouts qml6-module-qtquick-shapes
    qml6-module-qtquick-templates qml6-module-qtquick-window
    libqt6svg6 # reads the icons
    hicolor-icon-theme # without its index nobody finds the icons by their names
    qt6-translations-l10n
    fonts-inter # in wider fonts the panel's texts are cut short
    curl # fetches the installer
    ca-certificates)
set(recommends
    "default-dbus-session-bus | dbus-session-bus"
    "gnome-keyring | kwalletmanager | keepassxc" # keep the session's tokens
    libsecret-1-0
    xdg-utils # open links and folders, write mails
    "chromium | chromium-browser") # makes PDF files of protocols
list(JOIN depends ", " CPACK_DEBIAN_PACKAGE_DEPENDS)
list(JOIN recommends ", " CPACK_DEBIAN_PACKAGE_RECOMMENDS)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
