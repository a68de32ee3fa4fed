# Finds the zip library libzip and defines Libzip::Libzip. Does not use the library's
# own configuration, which requires its command-line tools.
include(FindPlainLibrary)
find_plain_library(Libzip
  HEADER zip.h LIBRARIES zip
  VERSION_HEADER zipconf.h VERSION_MACRO LIBZIP_VERSION)
