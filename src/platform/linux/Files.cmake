find_package(PkgConfig REQUIRED)
pkg_check_modules(XCB REQUIRED IMPORTED_TARGET xcb)
set(MURMELI_PLATFORM_SOURCES
    linux/Activation.cpp
    linux/Appearance.cpp
    linux/ClickOutside.cpp
    linux/Desktop.cpp
    linux/Memory.cpp
    linux/SessionBus.cpp linux/SessionBus.h
    linux/StatusItem.cpp
    linux/Trays.cpp linux/Trays.h
    linux/WindowSystem.cpp
    linux/X11.cpp linux/X11.h)
set(MURMELI_PLATFORM_LIBRARIES Qt6::DBus PkgConfig::XCB)
