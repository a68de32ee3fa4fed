# Runs before the files are installed: finds the folders that the installation is
# about to make, the topmost of each branch, for Uninstall.cmake to remove.
# simulationOwnFolders are those of our own name, simulationSharedFolders others.
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

# What is staged is moved later to where shared folders may have been before.
if(NOT "$ENV{DESTDIR}" STREQUAL "")
  list(TRANSFORM simulationOwnFolders PREPEND "${CMAKE_INSTALL_PREFIX}/" OUTPUT_VARIABLE simulationNewFolders)
endif()
