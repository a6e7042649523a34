# The application bundle of macOS: ZuvoManager.app with the plugin in Contents/Resources. Written after the platform's
# documents and untried, for want of such a machine; the property list alone is made and tested everywhere.
set(ZUVO_BUNDLE_IDENTIFIER com.tarnwick.zuvo-manager)
set(ZUVO_URL_SCHEME zuvo-manager)
configure_file(macos/Info.plist.in ${CMAKE_CURRENT_BINARY_DIR}/Info.plist @ONLY)

if(APPLE AND ZUVO_BUILD_WINDOW)
    set_target_properties(ZuvoManager PROPERTIES MACOSX_BUNDLE ON
                                                 MACOSX_BUNDLE_INFO_PLIST ${CMAKE_CURRENT_BINARY_DIR}/Info.plist)
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/resources/plugin DESTINATION ZuvoManager.app/Contents/Resources)
endif()
