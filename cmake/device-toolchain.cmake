# The device: ARM EABI, little-endian, soft float, 32-bit pointers and time_t. Its libraries come from the sysroot that
# scripts/setup device makes; what is built runs on this machine through scripts/run-device.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_C_COMPILER arm-linux-gnueabi-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabi-g++)

cmake_path(GET CMAKE_CURRENT_LIST_DIR PARENT_PATH project_folder)
execute_process(
  COMMAND ${project_folder}/scripts/device-sysroot path
  OUTPUT_VARIABLE CMAKE_SYSROOT
  OUTPUT_STRIP_TRAILING_WHITESPACE
  COMMAND_ERROR_IS_FATAL ANY)
if(NOT EXISTS ${CMAKE_SYSROOT}/usr/include)
  message(FATAL_ERROR "There is no sysroot in ${CMAKE_SYSROOT}. Run scripts/setup device first.")
endif()
set(CMAKE_CROSSCOMPILING_EMULATOR ${project_folder}/scripts/run-device)

# Programs are this machine's, everything else is the device's.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${CMAKE_SYSROOT})
set(ENV{PKG_CONFIG_LIBDIR}
    ${CMAKE_SYSROOT}/usr/lib/arm-linux-gnueabi/pkgconfig:${CMAKE_SYSROOT}/usr/lib/pkgconfig:${CMAKE_SYSROOT}/usr/share/pkgconfig)
set(ENV{PKG_CONFIG_PATH} "")
