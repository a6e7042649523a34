# The Debian packages, made by CPack: "cpack" in a build folder, or ./test package. zuvo-manager is the programs,
# zuvo-manager-standin the stand-in with its sample: it is under the GPL 3, so they are handed on apart.
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
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL manager standin)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_OUTPUT_FILE_PREFIX ${PROJECT_BINARY_DIR})

set(CPACK_DEBIAN_MANAGER_PACKAGE_NAME zuvo-manager)
set(CPACK_DEBIAN_MANAGER_DESCRIPTION
    "find the strongest moments in interview footage
A companion for editors who cut documentaries and interviews. It takes
interview footage, as files or as a timeline of DaVinci Resolve, has it
transcribed, measures how loud each line really is, and has a language
model choose the strongest moments and arrange them as a story. The story
goes on as a timeline, as EDL, FCPXML or Premiere XML, and as subtitles.

This package holds the application ZuvoManager and the same without a window
as zuvo. Transcription and analysis are done by paid services, with your own
keys; zuvo-manager-standin plays them for trying the programs out.")
set(CPACK_DEBIAN_MANAGER_PACKAGE_DEPENDS "${needed}")
# A desktop on Wayland; the desktop's own file dialog; the plugin's password dialog; links of the browser; both programs'
# words completed.
set(CPACK_DEBIAN_MANAGER_PACKAGE_RECOMMENDS "qt6-wayland, qt6-gtk-platformtheme, pkexec, desktop-file-utils, xdg-utils")
set(CPACK_DEBIAN_MANAGER_PACKAGE_SUGGESTS "bash-completion, zuvo-manager-standin")

set(CPACK_DEBIAN_STANDIN_PACKAGE_NAME zuvo-manager-standin)
set(CPACK_DEBIAN_STANDIN_DESCRIPTION
    "play the services of Zuvo Manager on this machine
zuvo-standin plays the transcription, messages and account services that
zuvo and ZuvoManager talk to, so that both can be tried without a service,
a key or an account. It brings an interview of two minutes to try them with.

It is a program of its own under the GNU General Public License, version 3.")
set(CPACK_DEBIAN_STANDIN_PACKAGE_RECOMMENDS "zuvo-manager")

# The terms as a paragraph of a copyright file.
file(READ ${PROJECT_SOURCE_DIR}/LICENSE ZUVO_TERMS)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/LICENSE)
string(STRIP "${ZUVO_TERMS}" ZUVO_TERMS)
string(REPLACE "\n\n" "\n.\n" ZUVO_TERMS "${ZUVO_TERMS}")
string(REPLACE "\n" "\n " ZUVO_TERMS " ${ZUVO_TERMS}")
configure_file(debian/copyright.in ${CMAKE_CURRENT_BINARY_DIR}/copyright @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/copyright DESTINATION ${documents})
install(FILES debian/copyright-standin DESTINATION ${standin_documents} RENAME copyright COMPONENT standin)
zuvo_install_packed(debian/changelog.Debian ${documents})
zuvo_install_packed(debian/changelog.Debian ${standin_documents} standin)

# zuvo_install_overrides(PACKAGE COMPONENT): lintian reads a file of the package's name.
function(zuvo_install_overrides package component)
    configure_file(debian/lintian-overrides.in ${CMAKE_CURRENT_BINARY_DIR}/lintian/${package} @ONLY)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/lintian/${package}
            DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides COMPONENT ${component})
endfunction()
zuvo_install_overrides(zuvo-manager manager)
zuvo_install_overrides(zuvo-manager-standin standin)
include(CPack)
