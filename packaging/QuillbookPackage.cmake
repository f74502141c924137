# The Debian package, made by cpack in the build folder of the release preset.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quillbook)
set(CPACK_PACKAGE_VENDOR Quillbook)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "Quillbook <quillbook@quillbook.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "lasting private copies of text-message conversations")
set(CPACK_PACKAGE_DESCRIPTION
    "Quillbook makes an album of one text-message conversation: an ordinary folder with an offline website, transcripts as JSON, \
Markdown and CSV, and every attachment at its original quality.\n\nIt reads a Messages library copied from a Mac, or a local \
backup of an iPhone or iPad, encrypted or not. The source is never changed, and nothing leaves the computer.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# The libraries that the program links. The QML modules are loaded by name, so nothing but this list knows of them.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(qml_modules
    qml6-module-qtcore
    qml6-module-qtqml
    qml6-module-qtqml-models
    qml6-module-qtqml-workerscript
    qml6-module-qtquick
    qml6-module-qtquick-controls
    qml6-module-qtquick-dialogs
    qml6-module-qtquick-layouts
    qml6-module-qtquick-shapes
    qml6-module-qtquick-templates
    qml6-module-qtquick-window
    qml6-module-qt-labs-folderlistmodel)
list(JOIN qml_modules ", " CPACK_DEBIAN_PACKAGE_DEPENDS)
string(APPEND CPACK_DEBIAN_PACKAGE_DEPENDS ", xdg-utils, hicolor-icon-theme")
# Desktop services: without one of them its part is left out and the album is made all the same.
set(desktop_services
    "default-dbus-session-bus | dbus-session-bus"
    evolution-data-server
    libcanberra-pulse
    notification-daemon
    qt6-qpa-plugins
    qt6-wayland
    sound-theme-freedesktop
    xdg-desktop-portal
    "xdg-desktop-portal-gtk | xdg-desktop-portal-backend")
list(JOIN desktop_services ", " CPACK_DEBIAN_PACKAGE_RECOMMENDS)
include(CPack)
