# A room is a folder, a static library and, where it has views, a QML module. Its include path is
# src/<room>'s parent under its own name only, and it sees other rooms through its link list alone.

add_library(murmeli_options INTERFACE)
target_compile_definitions(murmeli_options INTERFACE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_FOREACH)
target_compile_options(murmeli_options INTERFACE -Wall -Wextra -Wpedantic -Wnon-virtual-dtor
    -Wno-missing-field-initializers) # designated initialisers name what matters and leave the rest at its default
if(MURMELI_WARNINGS_AS_ERRORS)
    target_compile_options(murmeli_options INTERFACE -Werror)
endif()
if(MURMELI_SANITIZE)
    add_compile_options(-fsanitize=${MURMELI_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
    add_link_options(-fsanitize=${MURMELI_SANITIZE})
endif()

# Headers are read once: those of Qt's core for the rooms below, with those of its views for all others.
function(murmeli_headers name)
    file(GENERATE OUTPUT ${CMAKE_BINARY_DIR}/generated/${name}.cpp CONTENT "// Holds its headers.\n")
    add_library(${name} OBJECT ${CMAKE_BINARY_DIR}/generated/${name}.cpp)
    cmake_parse_arguments(HEADERS "" "" "LINK;HEADERS" ${ARGN})
    target_precompile_headers(${name} PRIVATE ${HEADERS_HEADERS}
        <algorithm> <chrono> <functional> <memory> <optional> <utility> <vector>
        <QByteArray> <QDateTime> <QHash> <QJsonObject> <QList> <QObject> <QPointer> <QSet> <QString> <QUrl> <QVariant>)
    target_link_libraries(${name} PRIVATE murmeli_options ${HEADERS_LINK})
endfunction()
murmeli_headers(murmeli_core_headers LINK Qt6::Core)
murmeli_headers(murmeli_view_headers LINK Qt6::Quick HEADERS <QtQml/qqmlregistration.h> <QQmlEngine> <QQuickItem>)

function(murmeli_precompiled target headers)
    if(NOT MURMELI_SANITIZE)
        target_precompile_headers(${target} REUSE_FROM ${headers})
    endif()
endfunction()

# Headers of a room are included as "room/Header.h" by the rooms that link it: a farm of links
# holding just that one folder is the only include path that the target gives away.
function(murmeli_room_includes target room)
    set(farm ${CMAKE_BINARY_DIR}/include/${room})
    file(MAKE_DIRECTORY ${farm})
    file(CREATE_LINK ${CMAKE_SOURCE_DIR}/src/${room} ${farm}/${room} SYMBOLIC)
    target_include_directories(${target} PUBLIC ${farm} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
endfunction()

# murmeli_room(NAME room SOURCES … LINK …): a room without views.
function(murmeli_room)
    cmake_parse_arguments(ROOM "" "NAME" "SOURCES;LINK" ${ARGN})
    add_library(murmeli_${ROOM_NAME} STATIC ${ROOM_SOURCES})
    target_link_libraries(murmeli_${ROOM_NAME} PUBLIC ${ROOM_LINK} PRIVATE murmeli_options)
    murmeli_precompiled(murmeli_${ROOM_NAME} murmeli_core_headers)
    murmeli_room_includes(murmeli_${ROOM_NAME} ${ROOM_NAME})
endfunction()

# murmeli_qml_room(NAME room URI Murmeli.Room SOURCES … QML_FILES … SINGLETONS … RESOURCES … LINK …)
function(murmeli_qml_room)
    cmake_parse_arguments(ROOM "" "NAME;URI" "SOURCES;QML_FILES;SINGLETONS;RESOURCES;DEPENDENCIES;LINK" ${ARGN})
    set(target murmeli_${ROOM_NAME})
    qt_add_library(${target} STATIC)
    set_source_files_properties(${ROOM_SINGLETONS} PROPERTIES QT_QML_SINGLETON_TYPE TRUE)
    set(uncompiled NO_CACHEGEN)
    if(MURMELI_COMPILE_QML)
        set(uncompiled)
    endif()
    qt_add_qml_module(${target}
        URI ${ROOM_URI}
        VERSION 1.0
        ${uncompiled}
        RESOURCE_PREFIX ${MURMELI_QML_PREFIX}
        IMPORT_PATH ${QT_QML_OUTPUT_DIRECTORY}
        DEPENDENCIES ${ROOM_DEPENDENCIES}
        SOURCES ${ROOM_SOURCES}
        QML_FILES ${ROOM_QML_FILES} ${ROOM_SINGLETONS}
        RESOURCES ${ROOM_RESOURCES})
    target_link_libraries(${target} PUBLIC ${ROOM_LINK} Qt6::Quick PRIVATE murmeli_options)
    murmeli_precompiled(${target} murmeli_view_headers)
    # Of what Qt makes beside the library only the plugin has a Q_OBJECT in it.
    get_property(made DIRECTORY PROPERTY BUILDSYSTEM_TARGETS)
    list(REMOVE_ITEM made ${target} ${target}plugin)
    set_target_properties(${made} PROPERTIES AUTOMOC OFF AUTOUIC OFF AUTORCC OFF)
    murmeli_room_includes(${target} ${ROOM_NAME})
    foreach(beside IN ITEMS ${target}plugin ${target}plugin_init)
        target_link_libraries(${beside} PRIVATE murmeli_options Qt6::Quick)
        murmeli_precompiled(${beside} murmeli_view_headers)
    endforeach()
endfunction()
