# The Debian package. What the programs link against is found by dpkg-shlibdeps; named here is what
# they load or start.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME dubrix)
set(CPACK_PACKAGE_VENDOR "The Dubrix developers")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_SOURCE_DIR}/build)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "make numbered copies of a phone's applications")
set(CPACK_PACKAGE_DESCRIPTION
"Dubrix makes duplicates of an application that is installed on a modified
phone. Each has an identifier and a name of its own and, if you like, icons
in a colour of your choice, so that several instances of one application
stand side by side, each with its own data. Duplicates that lag behind
their source are found and rebuilt.

On a desktop it works on a device in a folder, which has the phone's own
absolute paths and is kept apart from the rest of the system, with an
installer, sample applications and commands to drive it all by script.")
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "The Dubrix developers <developers@dubrix.invalid>")
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(needed
    "bubblewrap (>= 0.8.0-2+deb12u1)" zip
    qml6-module-qtquick qml6-module-qtquick-templates
    qml6-module-qtqml qml6-module-qtqml-models qml6-module-qtqml-workerscript
    qml6-module-qtwebview qt6-webview-plugins)
list(JOIN needed ", " CPACK_DEBIAN_PACKAGE_DEPENDS)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-inter, fonts-noto-color-emoji, qt6-wayland, xdg-dbus-proxy, xdg-utils")
install(FILES debian/lintian-overrides
        DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides RENAME dubrix)
include(CPack)
