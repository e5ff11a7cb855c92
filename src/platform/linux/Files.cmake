find_package(PkgConfig REQUIRED)
pkg_check_modules(XCB REQUIRED IMPORTED_TARGET xcb)
set(MURMELI_PLATFORM_SOURCES
    linux/Appearance.cpp
    linux/ClickOutside.cpp
    linux/Desktop.cpp
    linux/Memory.cpp
    linux/SessionBus.cpp linux/SessionBus.h
    linux/StatusItem.cpp
    linux/WindowSystem.cpp)
set(MURMELI_PLATFORM_LIBRARIES Qt6::DBus PkgConfig::XCB)
