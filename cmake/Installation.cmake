# How what is installed finds its library, and how it is removed again.
include(RunPath)

# Programs find the library from where they lie, so that an installation works
# under any prefix and may be moved.
relative_run_path(CMAKE_INSTALL_RPATH "${CMAKE_INSTALL_BINDIR}" "${CMAKE_INSTALL_LIBDIR}"
  "${CMAKE_INSTALL_FULL_LIBDIR}")

set(simulationPackageDir "${CMAKE_INSTALL_LIBDIR}/cmake/SimulationData")

# Called before everything that is installed: notes which folders are missing.
function(begin_installation)
  install(CODE "
    set(simulationPackageDir \"${simulationPackageDir}\")
    set(simulationOwnFolders \"${simulationPackageDir}\" \"${CMAKE_INSTALL_INCLUDEDIR}/simulation\")
    set(simulationSharedFolders \"${CMAKE_INSTALL_BINDIR}\")")
  install(SCRIPT "${PROJECT_SOURCE_DIR}/cmake/BeginInstallation.cmake")
endfunction()

# Called after it: lists what was installed beside the script that removes it.
function(end_installation)
  install(FILES "${PROJECT_SOURCE_DIR}/cmake/Uninstall.cmake" DESTINATION "${simulationPackageDir}")
  install(SCRIPT "${PROJECT_SOURCE_DIR}/cmake/EndInstallation.cmake")
endfunction()
