# orvik_options: what every target of ours is compiled with.

option(ORVIK_WERROR "Treat compiler warnings as errors" OFF)
option(ORVIK_BENCH "Build the benchmarks" OFF)
option(ORVIK_FUZZ "Build the fuzzers of the parsers (clang)" OFF)
option(ORVIK_LINT "Run clazy and clang-tidy on every file that clang++ compiles" OFF)
set(ORVIK_SANITIZE "" CACHE STRING "Sanitizers to build with, as for -fsanitize=")

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTOUIC ON)
set(CMAKE_AUTORCC ON)
# The first format has no times of files, which would differ from clone to clone.
set(CMAKE_AUTORCC_OPTIONS --format-version 1)

add_library(orvik_options INTERFACE)
target_compile_definitions(orvik_options INTERFACE
  QT_NO_CAST_FROM_ASCII
  QT_NO_CAST_TO_ASCII
  QT_NO_URL_CAST_FROM_STRING
  QT_STRICT_ITERATORS
  QT_DEPRECATED_WARNINGS
  QT_DISABLE_DEPRECATED_BEFORE=0x050F00)
target_compile_options(orvik_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual
  $<$<BOOL:${ORVIK_WERROR}>:-Werror>
  # What is handed out does not tell where it was built.
  "$<$<CONFIG:Release>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>")

if(ORVIK_SANITIZE)
  target_compile_options(orvik_options INTERFACE
    -fsanitize=${ORVIK_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(orvik_options INTERFACE -fsanitize=${ORVIK_SANITIZE})
endif()

if(ORVIK_LINT)
  # As a plug-in of the compiler clazy costs a fraction of a second per file; started on its own it
  # would read all of Qt's headers once more.
  target_compile_options(orvik_options INTERFACE
    "SHELL:-Xclang -load -Xclang ClazyPlugin.so"
    "SHELL:-Xclang -add-plugin -Xclang clazy"
    "SHELL:-Xclang -plugin-arg-clazy -Xclang level1")
  # Our headers, but not what moc and uic write into a build folder within the project.
  string(REGEX REPLACE "([][+.*()^$?{}|\\])" "\\\\\\1" root "${PROJECT_SOURCE_DIR}")
  set(CMAKE_CXX_CLANG_TIDY clang-tidy --quiet
    "--header-filter=^${root}/(app|base|session|client|imaging|output|acquisition|roi|ui|sessiontool|simulator|demo|bench|fuzz|tests|tools)/")
endif()
