# Installs the library into a scratch folder and moves the installation. Then runs the
# installed programs, builds and runs a project that uses the library, and removes the
# installation. Fails at the first error.
cmake_minimum_required(VERSION 3.25)

set(scratch "${BUILD_DIR}/installation-test")
file(REMOVE_RECURSE "${scratch}")
file(MAKE_DIRECTORY "${scratch}/empty")

function(run)
  execute_process(COMMAND ${ARGV} WORKING_DIRECTORY "${scratch}/empty" COMMAND_ERROR_IS_FATAL ANY)
endfunction()

function(expect a_name a_actual a_expected)
  if(NOT "${a_actual}" STREQUAL "${a_expected}")
    message(FATAL_ERROR "${a_name}:\n  actual:   ${a_actual}\n  expected: ${a_expected}")
  endif()
endfunction()

# Compares everything below a folder, hidden files and empty folders included.
function(expect_below a_name a_folder a_expected)
  file(GLOB_RECURSE found LIST_DIRECTORIES true RELATIVE "${a_folder}" "${a_folder}/*")
  expect("${a_name}" "${found}" "${a_expected}")
endfunction()

# Checks the run path for the usual layouts of an installation.
include("${SOURCE_DIR}/cmake/RunPath.cmake")
foreach(row IN ITEMS
    "bin|lib|$ORIGIN/../lib" "bin|lib64|$ORIGIN/../lib64"
    "bin|lib/x86_64-linux-gnu|$ORIGIN/../lib/x86_64-linux-gnu" "libexec/sim/bin|lib|$ORIGIN/../../../lib"
    "bin|/full/lib|/full/lib" "/elsewhere/bin|lib|/full/lib")
  string(REPLACE "|" ";" row "${row}")
  list(GET row 0 bin)
  list(GET row 1 lib)
  list(GET row 2 expected)
  relative_run_path(actual "${bin}" "${lib}" "/full/lib")
  expect("run path of ${bin} for ${lib}" "${actual}" "${expected}")
endforeach()

# The library is installed twice, as for an update, and then moved.
set(prefix "${scratch}/moved here")
foreach(time RANGE 1)
  run("${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${scratch}/prefix")
endforeach()
file(RENAME "${scratch}/prefix" "${prefix}")

foreach(program IN ITEMS simulationtool monitor)
  execute_process(COMMAND readelf --dynamic "${prefix}/${BIN}/${program}"
    OUTPUT_VARIABLE dynamic COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCH "path: \\[([^]]*)" match "${dynamic}")
  relative_run_path(runPath "${BIN}" "${LIB}" "")
  expect("run path of ${program}" "${CMAKE_MATCH_1}" "${runPath}")
endforeach()
run("${prefix}/${BIN}/simulationtool" --version)
run("${prefix}/${BIN}/monitor" --help)

# Each schema is installed once as a file and once inside the library.
foreach(name IN ITEMS command deployment scenario signalpackage)
  run("${prefix}/${BIN}/simulationtool" schema ${name} "${scratch}/${name}.xsd")
  file(READ "${scratch}/${name}.xsd" embedded)
  file(READ "${prefix}/${DATA}/simulationdata/schemas/${name}.xsd" installed)
  expect("schema ${name}" "${installed}" "${embedded}")
endforeach()

run("${CMAKE_COMMAND}" -S "${SOURCE_DIR}/tests/consumer" -B "${scratch}/build" -G Ninja
  "-DCMAKE_PREFIX_PATH=${prefix}" "-DCMAKE_CXX_FLAGS=${FLAGS}")
run("${CMAKE_COMMAND}" --build "${scratch}/build")
run("${scratch}/build/consumer")

# The removal deletes every installed file and keeps the files of other programs.
set(uninstall "${LIB}/cmake/SimulationData/Uninstall.cmake")
set(headers include/simulation)
file(WRITE "${prefix}/${BIN}/other" "")
file(WRITE "${prefix}/${headers}/.hidden" "")
run("${CMAKE_COMMAND}" -P "${prefix}/${uninstall}")
expect_below("left of others" "${prefix}" "${BIN};${BIN}/other;include;${headers};${headers}/.hidden")

# The removal keeps folders that existed before the installation, even empty ones.
set(prefix "${scratch}/shared")
file(MAKE_DIRECTORY "${prefix}/${LIB}/cmake")
file(GLOB_RECURSE before LIST_DIRECTORIES true RELATIVE "${prefix}" "${prefix}/*")
run("${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${prefix}")
run("${CMAKE_COMMAND}" -P "${prefix}/${uninstall}")
expect_below("left of a shared prefix" "${prefix}" "${before}")

# The removal deletes a prefix folder that the installation made. This also applies to
# a staged installation (DESTDIR).
foreach(stage IN ITEMS "" "${scratch}/stage")
  set(ENV{DESTDIR} "${stage}")
  run("${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${scratch}/alone")
  run("${CMAKE_COMMAND}" -P "${stage}${scratch}/alone/${uninstall}")
  file(GLOB_RECURSE files "${stage}${scratch}/alone/*")
  expect("files left in ${stage}${scratch}/alone" "${files}" "")
endforeach()
if(EXISTS "${scratch}/alone")
  message(FATAL_ERROR "${scratch}/alone was made by the installation and is left")
endif()
