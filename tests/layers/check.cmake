# Checks the order of the layers:
# - No source of the library includes a file of a higher layer.
# - No source of the tool includes a file of a higher folder of the tool.
# - Every source of the library belongs to a layer.
# - README.md and docs/architecture.md list the same layers in the same order.
#
#   cmake -DSOURCE_DIR=... -DLAYERS=layers.txt -P check.cmake
# LAYERS has a line "layer|file" for every file of the library, lowest layer first.

set(problems "")

# Sets a_result to the paths of the project's files that a_file includes.
function(own_includes a_result a_file)
  get_filename_component(folder "${a_file}" DIRECTORY)
  file(STRINGS "${a_file}" lines REGEX "^#include \"")
  set(files "")
  foreach(line IN LISTS lines)
    string(REGEX REPLACE "^#include \"([^\"]+)\".*" "\\1" name "${line}")
    foreach(base "${folder}" "${SOURCE_DIR}/simulation" "${SOURCE_DIR}/platform" "${SOURCE_DIR}/simulation/simulationtool")
      if(EXISTS "${base}/${name}")
        list(APPEND files "${base}/${name}")
        break()
      endif()
    endforeach()
  endforeach()
  set(${a_result} "${files}" PARENT_SCOPE)
endfunction()

# Adds a problem for every include of a file with a higher rank. The variable
# "rank_<path>" contains the rank of a file, and "layer_<path>" the name of its layer.
function(check_order)
  foreach(file IN LISTS ARGN)
    own_includes(included "${file}")
    foreach(other IN LISTS included)
      if(DEFINED "rank_${other}" AND "${rank_${other}}" GREATER "${rank_${file}}")
        list(APPEND problems "${file} (${layer_${file}}) includes ${other} (${layer_${other}})")
      endif()
    endforeach()
  endforeach()
  set(problems "${problems}" PARENT_SCOPE)
endfunction()

# The files of the library, ranked by layer
file(STRINGS "${LAYERS}" entries)
set(layers "")
set(files "")
foreach(entry IN LISTS entries)
  string(REPLACE "|" ";" entry "${entry}")
  list(GET entry 0 layer)
  list(GET entry 1 file)
  list(FIND layers "${layer}" rank)
  if(rank EQUAL -1)
    list(LENGTH layers rank)
    list(APPEND layers "${layer}")
  endif()
  set("rank_${file}" ${rank})
  set("layer_${file}" "${layer}")
  list(APPEND files "${file}")
endforeach()
file(GLOB_RECURSE present "${SOURCE_DIR}/simulation/simulationdata/*.cpp" "${SOURCE_DIR}/simulation/simulationdata/*.h"
  "${SOURCE_DIR}/platform/*.cpp" "${SOURCE_DIR}/platform/*.h")
foreach(file IN LISTS present)
  if(NOT DEFINED "rank_${file}")
    list(APPEND problems "${file} belongs to no layer: name it in simulation/simulationdata/CMakeLists.txt")
  endif()
endforeach()
list(FILTER files INCLUDE REGEX "\\.(cpp|h)$")
check_order(${files})

# Two folders have stricter rules. Files of io/ and xml/ include no file of a layer that
# handles scenarios or deployments. Files of io/ include no file of xml/ either.
foreach(file IN LISTS files)
  if(NOT file MATCHES "/simulationdata/(io|xml)/")
    continue()
  endif()
  own_includes(included "${file}")
  foreach(other IN LISTS included)
    if("${layer_${other}}" MATCHES "^(model|scenario documents|deployments|checking|communication|views)$"
        OR (file MATCHES "/io/" AND other MATCHES "/simulationdata/xml"))
      list(APPEND problems "${file} includes ${other} (${layer_${other}})")
    endif()
  endforeach()
endforeach()

# The files of the tool, ranked by folder
set(files "")
set(rank 100) # above every layer of the library
foreach(room console describe programs commands)
  file(GLOB sources "${SOURCE_DIR}/simulation/simulationtool/${room}/*.cpp"
    "${SOURCE_DIR}/simulation/simulationtool/${room}/*.h")
  foreach(file IN LISTS sources)
    set("rank_${file}" ${rank})
    set("layer_${file}" "${room}/")
    list(APPEND files "${file}")
  endforeach()
  math(EXPR rank "${rank} + 1")
endforeach()
check_order(${files})

# Compares the layers with those that the documents list. A document lists them in the
# first column of the table whose header begins with "layer".
foreach(document README.md docs/architecture.md)
  file(STRINGS "${SOURCE_DIR}/${document}" lines)
  set(listed "")
  set(inTable FALSE)
  foreach(line IN LISTS lines)
    if(line MATCHES "^\\| layer \\|")
      set(inTable TRUE)
    elseif(NOT line MATCHES "^\\|")
      set(inTable FALSE)
    elseif(inTable AND line MATCHES "^\\| ([A-Za-z ]+) \\|")
      list(APPEND listed "${CMAKE_MATCH_1}")
    endif()
  endforeach()
  if(NOT "${listed}" STREQUAL "${layers}")
    list(APPEND problems "${document} lists the layers \"${listed}\", the build has \"${layers}\"")
  endif()
endforeach()

list(LENGTH layers count)
if(count LESS 2)
  list(APPEND problems "${LAYERS} lists no layers")
endif()
if(problems)
  list(JOIN problems "\n" problems)
  message(FATAL_ERROR "${problems}")
endif()
