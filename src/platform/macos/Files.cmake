set(MURMELI_PLATFORM_SOURCES
    macos/Appearance.mm
    macos/ClickOutside.mm
    macos/LoginItem.cpp
    macos/Memory.cpp
    macos/ShareMenu.mm
    macos/SignInSession.mm
    macos/StatusItem.cpp
    macos/SystemSettings.cpp
    macos/WindowSystem.mm
    macos/Workspace.mm)
set_source_files_properties(macos/SignInSession.mm PROPERTIES COMPILE_OPTIONS -fobjc-arc)
set(MURMELI_PLATFORM_LIBRARIES "-framework AppKit" "-framework AuthenticationServices")
