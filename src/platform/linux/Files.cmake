find_package(PkgConfig REQUIRED)
pkg_check_modules(XCB REQUIRED IMPORTED_TARGET xcb)
set(MURMELI_PLATFORM_SOURCES
    linux/Appearance.cpp
    linux/ClickOutside.cpp
    linux/LoginItem.cpp
    linux/Memory.cpp
    linux/SessionBus.cpp linux/SessionBus.h
    linux/ShareMenu.cpp
    linux/SignInSession.cpp
    linux/StatusItem.cpp
    linux/SystemSettings.cpp
    linux/WindowSystem.cpp
    linux/Workspace.cpp)
set(MURMELI_PLATFORM_LIBRARIES Qt6::DBus PkgConfig::XCB)
