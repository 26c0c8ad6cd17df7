# What every target of the project shares.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib/static)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)

# Development builds find the stand-alone platform beside themselves; installed ones use the loader's path.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
pkg_check_modules(GLIB REQUIRED IMPORTED_TARGET glib-2.0)

# jni.h comes with the JDK that compiles the Java side; no other part of it is needed to build.
find_program(JAVAC javac REQUIRED)
file(REAL_PATH ${JAVAC} javac_path)
cmake_path(GET javac_path PARENT_PATH jdk_bin)
cmake_path(GET jdk_bin PARENT_PATH JDK_HOME)
add_library(jni INTERFACE)
target_include_directories(jni SYSTEM INTERFACE ${JDK_HOME}/include ${JDK_HOME}/include/linux)

# Sanitizers, as a list such as address,undefined.
set(SANITIZE "" CACHE STRING "Sanitizers to build everything with")
if(SANITIZE)
  add_compile_options(-fsanitize=${SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${SANITIZE})
endif()

# A library of the platform names every library that it needs. What its sanitizers need, clang leaves to the program.
if(NOT SANITIZE)
  set(no_undefined LINKER:-z,defs)
endif()

option(FUZZ "Build the fuzz targets; takes clang" OFF)
if(FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

option(COVERAGE "Count how often each line and branch runs" OFF)
if(COVERAGE)
  set(counted --coverage -fprofile-update=atomic) # Compile options of what is tested, not of the tests.
  add_link_options(--coverage)
endif()

# A virtual machine could load a sanitized library only with the sanitizer preloaded, and counts slow it down.
set(WITH_JAVA TRUE)
if(SANITIZE OR COVERAGE)
  set(WITH_JAVA FALSE)
endif()

add_library(warnings INTERFACE)
target_compile_options(
  warnings
  INTERFACE -Wall
            -Wextra
            -Wpedantic
            -Werror
            -Wshadow
            -Wformat=2
            -Wno-format-nonliteral
            -Wundef
            -Wcast-align
            -Wno-psabi # On ARM: notes about how GCC 7 changed passing some templates.
            $<$<COMPILE_LANGUAGE:CXX>:-Wconversion
            -Wnon-virtual-dtor
            -Woverloaded-virtual>)

# Messages name source files relative to the repository, whatever the build folder.
add_compile_options(-fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)
