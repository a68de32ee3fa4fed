# Settings that every target of this project shares.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTORCC ON)
set(CMAKE_AUTOUIC ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Werror)

# A stored scenario must give the same values on every machine: a fused multiply-add
# rounds differently, and only some processors have it.
add_compile_options(-ffp-contract=off)

add_compile_definitions(
  QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_DISABLE_DEPRECATED_BEFORE=0x060400)

if(SIMULATION_SANITIZE)
  set(sanitizers -fsanitize=address,undefined,float-cast-overflow -fno-sanitize-recover=all -fno-omit-frame-pointer)
  # The check of dynamic types compares addresses of type information. With hidden
  # visibility the library and its users have copies with different addresses.
  list(APPEND sanitizers -fno-sanitize=vptr)
  add_compile_options(${sanitizers})
  add_link_options(${sanitizers})
endif()

# Headers that most sources include are compiled once, because parsing them in every
# source takes a third of the time of a build. Every source still includes what it uses:
# scripts/lint.sh reads the sources without precompiled headers.
function(simulation_make_precompiled_headers)
  file(WRITE "${CMAKE_BINARY_DIR}/precompiled.cpp" "")
  add_library(simulation_precompiled OBJECT "${CMAKE_BINARY_DIR}/precompiled.cpp")
  target_link_libraries(simulation_precompiled PRIVATE ${ARGN})
  target_precompile_headers(simulation_precompiled PRIVATE
    <QByteArray> <QFile> <QHash> <QList> <QMap> <QObject> <QSet> <QString> <QStringList>
    <QVector> <QXmlStreamReader> <QXmlStreamWriter>
    <algorithm> <functional> <memory> <optional> <utility> <vector>)
  set_target_properties(simulation_precompiled PROPERTIES AUTOMOC OFF AUTOUIC OFF AUTORCC OFF)
endfunction()

# Lets a target use the precompiled headers. The target must link the libraries that
# were passed to simulation_make_precompiled_headers().
function(simulation_use_precompiled_headers a_target)
  target_precompile_headers(${a_target} REUSE_FROM simulation_precompiled)
endfunction()
