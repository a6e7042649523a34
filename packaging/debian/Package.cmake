# The Debian package, made by CPack: "cpack" in a build folder, or ./test package.
if(NOT CMAKE_SYSTEM_NAME STREQUAL "Linux")
    return()
endif()

# What runs beside the programs and is not linked: the rows of tools/setup/packages.txt for the running programs.
set(package_list ${PROJECT_SOURCE_DIR}/tools/setup/packages.txt)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${package_list})
file(STRINGS ${package_list} rows REGEX "^(media |ui +(qml6-module-|gstreamer|fonts-))")
foreach(row ${rows})
    string(REGEX REPLACE "^[a-z]+ +([^ ]+).*" "\\1" name "${row}")
    list(APPEND needed ${name})
endforeach()
list(REMOVE_DUPLICATES needed)
# An icon's folders belong to this package, and the desktop finds the link's scheme by its triggers.
list(APPEND needed hicolor-icon-theme)
list(JOIN needed ", " needed)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zuvo-manager)
set(CPACK_PACKAGE_VENDOR Tarnwick)
set(CPACK_PACKAGE_CONTACT "Tarnwick <packages@zuvo.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "find the strongest moments in interview footage")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "A companion for editors who cut documentaries and interviews. It takes
interview footage, as files or as a timeline of DaVinci Resolve, has it
transcribed, measures how loud each line really is, and has a language
model choose the strongest moments and arrange them as a story. The story
goes on as a timeline, as EDL, FCPXML or Premiere XML, and as subtitles.

This package holds the application ZuvoManager, the same without a window
as zuvo, and zuvo-standin, which plays every service for trying them out.
Transcription and analysis are done by paid services, with your own keys.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "${needed}")
# A desktop on Wayland; the desktop's own file dialog; the plugin's password dialog; links of the browser; both programs'
# words completed.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-wayland, qt6-gtk-platformtheme, pkexec, desktop-file-utils, xdg-utils")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "bash-completion")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_OUTPUT_FILE_PREFIX ${PROJECT_BINARY_DIR})

install(FILES debian/copyright DESTINATION ${documents})
zuvo_install_packed(debian/changelog.Debian ${documents})
install(FILES debian/lintian-overrides DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides RENAME zuvo-manager)
include(CPack)
