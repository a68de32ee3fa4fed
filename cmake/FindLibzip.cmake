# Finds the zip library libzip and defines Libzip::Libzip. The configuration
# that comes with the library also wants its command-line tools installed.
include(FindPlainLibrary)
find_plain_library(Libzip
  HEADER zip.h LIBRARIES zip
  VERSION_HEADER zipconf.h VERSION_MACRO LIBZIP_VERSION)
