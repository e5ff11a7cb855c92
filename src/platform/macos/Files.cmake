set(MURMELI_PLATFORM_SOURCES
    macos/Activation.cpp
    macos/Appearance.mm
    macos/ClickOutside.mm
    macos/Desktop.mm
    macos/Memory.cpp
    macos/NativeWindow.h
    macos/StatusItem.cpp
    macos/WindowSystem.mm)
set_source_files_properties(macos/Appearance.mm macos/ClickOutside.mm macos/Desktop.mm macos/WindowSystem.mm
    PROPERTIES SKIP_PRECOMPILE_HEADERS ON COMPILE_OPTIONS -fobjc-arc)
set(MURMELI_PLATFORM_LIBRARIES "-framework AppKit" "-framework AuthenticationServices")
