# Snowball's stemmers, which come without a description for CMake: the target Snowball::stemmer.
find_path(Snowball_INCLUDE_DIR libstemmer.h)
find_library(Snowball_LIBRARY stemmer)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Snowball REQUIRED_VARS Snowball_LIBRARY Snowball_INCLUDE_DIR)
if(Snowball_FOUND AND NOT TARGET Snowball::stemmer)
    add_library(Snowball::stemmer UNKNOWN IMPORTED)
    set_target_properties(Snowball::stemmer PROPERTIES
        IMPORTED_LOCATION "${Snowball_LIBRARY}" INTERFACE_INCLUDE_DIRECTORIES "${Snowball_INCLUDE_DIR}")
endif()
mark_as_advanced(Snowball_INCLUDE_DIR Snowball_LIBRARY)
