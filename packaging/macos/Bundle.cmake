set(MURMELI_BUNDLE_IDENTIFIER com.valdor.quillet.app CACHE STRING "Identifier of the application's bundle")
configure_file(macos/Info.plist.in ${CMAKE_CURRENT_BINARY_DIR}/Info.plist @ONLY)
set_target_properties(murmeli PROPERTIES
    OUTPUT_NAME Murmeli
    MACOSX_BUNDLE_INFO_PLIST ${CMAKE_CURRENT_BINARY_DIR}/Info.plist)

# Puts a file of this folder into a folder of the bundle's Contents.
function(murmeli_bundle_file file folder)
    set(path ${CMAKE_CURRENT_SOURCE_DIR}/macos/${file})
    target_sources(murmeli PRIVATE ${path})
    set_source_files_properties(${path} TARGET_DIRECTORY murmeli PROPERTIES MACOSX_PACKAGE_LOCATION ${folder})
endfunction()
murmeli_bundle_file(Murmeli.icns Resources)
murmeli_bundle_file(en.lproj/InfoPlist.strings Resources/en.lproj)
murmeli_bundle_file(ru.lproj/InfoPlist.strings Resources/ru.lproj)
murmeli_bundle_file(com.valdor.quillet.app.plist Resources) # the login agent, for ~/Library/LaunchAgents

install(TARGETS murmeli BUNDLE DESTINATION .)
if(Qt6_VERSION VERSION_GREATER_EQUAL 6.5)
    qt_generate_deploy_qml_app_script(TARGET murmeli OUTPUT_SCRIPT deployment) # brings Qt into the bundle
    install(SCRIPT ${deployment})
elseif(NOT MURMELI_ONLY_CONFIGURES)
    message(FATAL_ERROR "For macOS Murmeli takes Qt 6.5 or later, whose scripts bring Qt into the bundle; this is ${Qt6_VERSION}.")
endif()

set(CPACK_GENERATOR DragNDrop)
