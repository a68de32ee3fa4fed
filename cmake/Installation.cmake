# The run path of installed programs, and the lists of installed files and folders for
# Uninstall.cmake.
include(RunPath)

# Programs find the library relative to their own folder, so that an installation
# works under any prefix and may be moved.
relative_run_path(CMAKE_INSTALL_RPATH "${CMAKE_INSTALL_BINDIR}" "${CMAKE_INSTALL_LIBDIR}"
  "${CMAKE_INSTALL_FULL_LIBDIR}")

set(simulationPackageDir "${CMAKE_INSTALL_LIBDIR}/cmake/SimulationData")

# Call before all other install commands: records which folders are missing.
function(begin_installation)
  install(CODE "
    set(simulationPackageDir \"${simulationPackageDir}\")
    set(simulationOwnFolders \"${simulationPackageDir}\" \"${CMAKE_INSTALL_INCLUDEDIR}/simulation\"
      \"${CMAKE_INSTALL_DATADIR}/simulationdata\")
    set(simulationSharedFolders \"${CMAKE_INSTALL_BINDIR}\")")
  install(SCRIPT "${PROJECT_SOURCE_DIR}/cmake/BeginInstallation.cmake")
endfunction()

# Call after all other install commands: lists the installed files, next to the script
# that removes them.
function(end_installation)
  install(FILES "${PROJECT_SOURCE_DIR}/cmake/Uninstall.cmake" DESTINATION "${simulationPackageDir}")
  install(SCRIPT "${PROJECT_SOURCE_DIR}/cmake/EndInstallation.cmake")
endfunction()
