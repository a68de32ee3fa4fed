# Runs after the files are installed and writes the two lists that Uninstall.cmake
# reads. The paths are relative to that script's folder, so that the prefix may be moved.
# Entries of earlier installations are kept.

function(note_installed a_file a_paths)
  cmake_path(ABSOLUTE_PATH simulationPackageDir BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}" OUTPUT_VARIABLE base)
  set(list "$ENV{DESTDIR}${base}/${a_file}")
  set(lines "")
  if(EXISTS "${list}")
    file(STRINGS "${list}" lines)
  endif()
  foreach(path IN LISTS ${a_paths})
    cmake_path(RELATIVE_PATH path BASE_DIRECTORY "${base}")
    list(APPEND lines "${path}")
  endforeach()
  list(REMOVE_DUPLICATES lines)
  list(JOIN lines "\n" text)
  file(WRITE "${list}" "${text}\n")
endfunction()

note_installed(installed_files.txt CMAKE_INSTALL_MANIFEST_FILES)
note_installed(made_folders.txt simulationNewFolders)
