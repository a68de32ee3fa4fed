# Finds the geodesy library GeographicLib and defines GeographicLib::GeographicLib.

find_path(GeographicLib_INCLUDE_DIR GeographicLib/Geodesic.hpp)
find_library(GeographicLib_LIBRARY NAMES GeographicLib Geographic)
mark_as_advanced(GeographicLib_INCLUDE_DIR GeographicLib_LIBRARY)

if(GeographicLib_INCLUDE_DIR AND EXISTS "${GeographicLib_INCLUDE_DIR}/GeographicLib/Config.h")
  file(STRINGS "${GeographicLib_INCLUDE_DIR}/GeographicLib/Config.h" versionLine
    REGEX "#define GEOGRAPHICLIB_VERSION_STRING ")
  string(REGEX REPLACE ".*\"([0-9.]+)\".*" "\\1" GeographicLib_VERSION "${versionLine}")
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(GeographicLib
  REQUIRED_VARS GeographicLib_LIBRARY GeographicLib_INCLUDE_DIR
  VERSION_VAR GeographicLib_VERSION)

if(GeographicLib_FOUND AND NOT TARGET GeographicLib::GeographicLib)
  add_library(GeographicLib::GeographicLib UNKNOWN IMPORTED)
  set_target_properties(GeographicLib::GeographicLib PROPERTIES
    IMPORTED_LOCATION "${GeographicLib_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${GeographicLib_INCLUDE_DIR}")
endif()
