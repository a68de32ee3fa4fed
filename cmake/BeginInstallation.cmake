# Runs before the files are installed. For each folder of the installation, lists the
# topmost folder of its path that does not exist yet. The installation will make these
# folders, and Uninstall.cmake can remove them. simulationOwnFolders belong to this
# project alone, simulationSharedFolders do not.
if(CMAKE_INSTALL_PREFIX MATCHES ";")
  message(FATAL_ERROR "Nothing was installed: CMake cannot handle the semicolon in the prefix "
    "${CMAKE_INSTALL_PREFIX}. Choose another.")
endif()
set(simulationNewFolders "")
foreach(folder IN LISTS simulationOwnFolders simulationSharedFolders)
  cmake_path(ABSOLUTE_PATH folder BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}")
  set(topmost "")
  while(NOT EXISTS "$ENV{DESTDIR}${folder}" AND NOT "${folder}" STREQUAL "${topmost}")
    set(topmost "${folder}")
    cmake_path(GET folder PARENT_PATH folder)
  endwhile()
  if(topmost)
    list(APPEND simulationNewFolders "${topmost}")
  endif()
endforeach()

# A staged installation is moved later to a place where shared folders may exist, so
# only the project's own folders are listed.
if(NOT "$ENV{DESTDIR}" STREQUAL "")
  list(TRANSFORM simulationOwnFolders PREPEND "${CMAKE_INSTALL_PREFIX}/" OUTPUT_VARIABLE simulationNewFolders)
endif()
