# Common code of the find modules for libraries without a usable configuration of
# their own: finds header and library, reads the version from a header, and defines
# NAME::NAME.
#
#   find_plain_library(NAME HEADER header LIBRARIES name...
#     VERSION_HEADER header VERSION_MACRO macro)
#
# The value of VERSION_MACRO is a string that begins with the version.
include(FindPackageHandleStandardArgs)

macro(find_plain_library a_name)
  cmake_parse_arguments(plain "" "HEADER;VERSION_HEADER;VERSION_MACRO" "LIBRARIES" ${ARGN})
  find_path(${a_name}_INCLUDE_DIR ${plain_HEADER})
  find_library(${a_name}_LIBRARY NAMES ${plain_LIBRARIES})
  mark_as_advanced(${a_name}_INCLUDE_DIR ${a_name}_LIBRARY)

  if(${a_name}_INCLUDE_DIR AND EXISTS "${${a_name}_INCLUDE_DIR}/${plain_VERSION_HEADER}")
    file(STRINGS "${${a_name}_INCLUDE_DIR}/${plain_VERSION_HEADER}" plain_versionLine
      REGEX "#define ${plain_VERSION_MACRO} ")
    string(REGEX REPLACE ".*\"([0-9.]+).*\".*" "\\1" ${a_name}_VERSION "${plain_versionLine}")
  endif()

  find_package_handle_standard_args(${a_name}
    REQUIRED_VARS ${a_name}_LIBRARY ${a_name}_INCLUDE_DIR
    VERSION_VAR ${a_name}_VERSION)

  if(${a_name}_FOUND AND NOT TARGET ${a_name}::${a_name})
    add_library(${a_name}::${a_name} UNKNOWN IMPORTED)
    set_target_properties(${a_name}::${a_name} PROPERTIES
      IMPORTED_LOCATION "${${a_name}_LIBRARY}"
      INTERFACE_INCLUDE_DIRECTORIES "${${a_name}_INCLUDE_DIR}")
  endif()
endmacro()
