# Finds the geodesy library GeographicLib and defines GeographicLib::GeographicLib.
include(FindPlainLibrary)
find_plain_library(GeographicLib
  HEADER GeographicLib/Geodesic.hpp LIBRARIES GeographicLib Geographic
  VERSION_HEADER GeographicLib/Config.h VERSION_MACRO GEOGRAPHICLIB_VERSION_STRING)
