set(MURMELI_PLATFORM_SOURCES
    macos/Appearance.mm
    macos/ClickOutside.mm
    macos/StatusItem.cpp
    macos/WindowSystem.mm)
set(MURMELI_PLATFORM_LIBRARIES "-framework AppKit")
