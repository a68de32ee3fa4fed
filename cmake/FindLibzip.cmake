# Finds the zip library libzip and defines Libzip::Libzip. The configuration
# that comes with the library also wants its command-line tools installed.

find_path(Libzip_INCLUDE_DIR zip.h)
find_library(Libzip_LIBRARY NAMES zip)
mark_as_advanced(Libzip_INCLUDE_DIR Libzip_LIBRARY)

if(Libzip_INCLUDE_DIR AND EXISTS "${Libzip_INCLUDE_DIR}/zipconf.h")
  file(STRINGS "${Libzip_INCLUDE_DIR}/zipconf.h" versionLine REGEX "#define LIBZIP_VERSION ")
  string(REGEX REPLACE ".*\"([0-9.]+).*\".*" "\\1" Libzip_VERSION "${versionLine}")
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Libzip
  REQUIRED_VARS Libzip_LIBRARY Libzip_INCLUDE_DIR
  VERSION_VAR Libzip_VERSION)

if(Libzip_FOUND AND NOT TARGET Libzip::Libzip)
  add_library(Libzip::Libzip UNKNOWN IMPORTED)
  set_target_properties(Libzip::Libzip PROPERTIES
    IMPORTED_LOCATION "${Libzip_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${Libzip_INCLUDE_DIR}")
endif()
