set(MURMELI_PLATFORM_SOURCES
    macos/Appearance.mm
    macos/ClickOutside.mm
    macos/Desktop.mm
    macos/Memory.cpp
    macos/StatusItem.cpp
    macos/WindowSystem.mm)
set_source_files_properties(macos/Desktop.mm PROPERTIES COMPILE_OPTIONS -fobjc-arc)
set(MURMELI_PLATFORM_LIBRARIES "-framework AppKit" "-framework AuthenticationServices")
