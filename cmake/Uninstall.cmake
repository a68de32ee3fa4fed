# Removes the installation that this file belongs to, and nothing else:
#
#   cmake -P PREFIX/lib/cmake/SimulationData/Uninstall.cmake
#
# Removes the files listed in installed_files.txt, then the folders that the
# installation made, if they are empty.
cmake_minimum_required(VERSION 3.25)

set(base "${CMAKE_CURRENT_LIST_DIR}")
set(lists "${base}/installed_files.txt" "${base}/made_folders.txt")
foreach(list IN LISTS lists)
  if(NOT EXISTS "${list}")
    message(FATAL_ERROR "Nothing was removed: ${list} is missing, which lists what was installed.")
  endif()
endforeach()
file(STRINGS "${base}/installed_files.txt" files)
file(STRINGS "${base}/made_folders.txt" madeFolders)

function(remove_file a_file)
  file(REMOVE "${a_file}")
  # EXISTS is false for a link to a missing target.
  if(EXISTS "${a_file}" OR IS_SYMLINK "${a_file}")
    message(FATAL_ERROR "Not everything was removed: ${a_file} cannot be deleted. "
      "Run this as the user who installed it.")
  endif()
endfunction()

# Removes empty folders, from a_folder up to the topmost folder that the installation
# made.
function(remove_empty_folders a_folder)
  foreach(made IN LISTS madeFolders)
    cmake_path(ABSOLUTE_PATH made BASE_DIRECTORY "${base}" NORMALIZE)
    # With a slash at the end, a folder would not be found as a prefix of itself.
    string(REGEX REPLACE "/$" "" made "${made}")
    set(folder "${a_folder}")
    cmake_path(IS_PREFIX made "${folder}" isMade)
    while(isMade)
      # rmdir refuses a folder that still contains files.
      execute_process(COMMAND rmdir "${folder}" ERROR_QUIET)
      cmake_path(GET folder PARENT_PATH folder)
      cmake_path(IS_PREFIX made "${folder}" isMade)
    endwhile()
  endforeach()
endfunction()

# The script and its lists are removed last, so that the script can be run again
# after an error.
set(folders "${base}")
set(ownFiles ${lists} "${CMAKE_CURRENT_LIST_FILE}")
foreach(file IN LISTS files)
  cmake_path(ABSOLUTE_PATH file BASE_DIRECTORY "${base}" NORMALIZE)
  cmake_path(GET file PARENT_PATH folder)
  list(APPEND folders "${folder}")
  if(NOT file IN_LIST ownFiles)
    remove_file("${file}")
  endif()
endforeach()
foreach(file IN LISTS ownFiles)
  remove_file("${file}")
endforeach()
list(REMOVE_DUPLICATES folders)
foreach(folder IN LISTS folders)
  remove_empty_folders("${folder}")
endforeach()
message(STATUS "Removed the installation of ${base}")
