# Installs the library into a scratch folder, builds the consumer against it
# and runs it. Any failure stops.

set(scratch "${BUILD_DIR}/consumer-test")
file(REMOVE_RECURSE "${scratch}")

function(run)
  execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

run("${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${scratch}/prefix")
run("${CMAKE_COMMAND}" -S "${SOURCE_DIR}" -B "${scratch}/build" -G Ninja
  "-DCMAKE_PREFIX_PATH=${scratch}/prefix" "-DCMAKE_CXX_FLAGS=${FLAGS}")
run("${CMAKE_COMMAND}" --build "${scratch}/build")
run("${scratch}/build/consumer")
