# Builds for the unit: 32-bit ARM with hardware floating point. docs/arm.md tells how to use it with your own sysroot.
#
#   VARUNDO_SYSROOT        the root of the unit's file system with Qt's headers (default: what scripts/arm-sysroot makes)
#   VARUNDO_TARGET         the compiler's prefix, and Debian's name for the architecture (arm-linux-gnueabihf)
#   VARUNDO_QT_HOST_TOOLS  the directory of the moc and rcc that run here (default: where Debian keeps them)
#   VARUNDO_EMULATOR       what runs the unit's programs here, a list (default: qemu-arm-static or qemu-arm, if installed)
#
# Each is a CMake or an environment variable.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)

# CMake reads this file again for each of its own trial builds; these have to see the same choice.
function(varundo_choose name default)
  if(NOT DEFINED ${name})
    if(DEFINED ENV{${name}})
      set(default "$ENV{${name}}")
    endif()
    set(${name} "${default}" PARENT_SCOPE)
  endif()
endfunction()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES VARUNDO_SYSROOT VARUNDO_TARGET)

get_filename_component(varundo_project "${CMAKE_CURRENT_LIST_DIR}/../.." ABSOLUTE)
varundo_choose(VARUNDO_SYSROOT "${varundo_project}/build/arm-sysroot")
varundo_choose(VARUNDO_TARGET arm-linux-gnueabihf)

if(NOT IS_DIRECTORY "${VARUNDO_SYSROOT}/usr")
  message(FATAL_ERROR "There is no sysroot in '${VARUNDO_SYSROOT}'. On Debian, scripts/arm-sysroot makes one; "
    "for one of your own, set VARUNDO_SYSROOT to its directory")
endif()
find_program(VARUNDO_CROSS_COMPILER "${VARUNDO_TARGET}-g++")
if(NOT VARUNDO_CROSS_COMPILER)
  message(FATAL_ERROR "The cross compiler ${VARUNDO_TARGET}-g++ is missing. "
    "Debian: apt-get install g++-arm-linux-gnueabihf; for one of your own, put it into the PATH and set VARUNDO_TARGET "
    "to its prefix")
endif()
set(CMAKE_CXX_COMPILER "${VARUNDO_CROSS_COMPILER}")

set(CMAKE_SYSROOT "${VARUNDO_SYSROOT}")
set(CMAKE_FIND_ROOT_PATH "${VARUNDO_SYSROOT}")
set(CMAKE_LIBRARY_ARCHITECTURE "${VARUNDO_TARGET}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# CTest puts this before each test program. Without an emulator everything builds all the same.
find_program(VARUNDO_QEMU NAMES qemu-arm-static qemu-arm)
if(VARUNDO_QEMU)
  varundo_choose(VARUNDO_EMULATOR "${VARUNDO_QEMU};-L;${VARUNDO_SYSROOT}")
else()
  varundo_choose(VARUNDO_EMULATOR "")
endif()
set(CMAKE_CROSSCOMPILING_EMULATOR "${VARUNDO_EMULATOR}")
