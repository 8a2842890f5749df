# The compiler and Qt, each found with an error that says what to install.
set(minimum_GNU 9)
set(minimum_Clang 9)
if(NOT DEFINED minimum_${CMAKE_CXX_COMPILER_ID})
  message(FATAL_ERROR "This is built with GCC or Clang; ${CMAKE_CXX_COMPILER} is ${CMAKE_CXX_COMPILER_ID}. "
    "Debian: apt-get install g++")
elseif(CMAKE_CXX_COMPILER_VERSION VERSION_LESS minimum_${CMAKE_CXX_COMPILER_ID})
  message(FATAL_ERROR "C++17 as used here needs GCC or Clang ${minimum_${CMAKE_CXX_COMPILER_ID}} or newer; "
    "${CMAKE_CXX_COMPILER} is ${CMAKE_CXX_COMPILER_VERSION}. Debian 11 and newer have it: apt-get install g++")
endif()

# A sysroot's moc and rcc run on the unit, not here: Qt's package takes those that are known already.
if(CMAKE_CROSSCOMPILING)
  foreach(tool moc rcc qmake)
    find_program(VARUNDO_QT_HOST_${tool} ${tool}
      HINTS "${VARUNDO_QT_HOST_TOOLS}" "$ENV{VARUNDO_QT_HOST_TOOLS}"
        "${OE_QMAKE_PATH_EXTERNAL_HOST_BINS}" "$ENV{OE_QMAKE_PATH_EXTERNAL_HOST_BINS}"
      PATHS /usr/lib/qt5/bin)
    if(NOT VARUNDO_QT_HOST_${tool})
      message(FATAL_ERROR "${tool} of Qt 5 for this machine is missing. Debian: apt-get install qtbase5-dev-tools; "
        "for one elsewhere, set VARUNDO_QT_HOST_TOOLS to its directory")
    endif()
    if(NOT TARGET Qt5::${tool})
      add_executable(Qt5::${tool} IMPORTED)
      set_target_properties(Qt5::${tool} PROPERTIES IMPORTED_LOCATION "${VARUNDO_QT_HOST_${tool}}")
    endif()
  endforeach()
endif()

set(QT_NO_CREATE_VERSIONLESS_TARGETS ON)
set(qt_components Core Gui Network SerialPort)
if(VARUNDO_BUILD_TESTS)
  list(APPEND qt_components Test)
endif()
foreach(component IN LISTS qt_components)
  find_package(Qt5${component} 5.15 QUIET CONFIG)
  if(NOT Qt5${component}_FOUND AND CMAKE_SYSROOT)
    message(FATAL_ERROR "The sysroot ${CMAKE_SYSROOT} has no Qt ${component} 5.15 or newer (of Qt 5). Add it there, with "
      "headers and CMake package; on Debian, scripts/arm-sysroot makes a complete sysroot")
  elseif(NOT Qt5${component}_FOUND)
    message(FATAL_ERROR "Qt ${component} 5.15 or newer (of Qt 5) is missing. "
      "Debian: apt-get install qtbase5-dev libqt5serialport5-dev")
  endif()
endforeach()

# No implicit conversion from char* to QString, no old-style connects, no unqualified 'signals' surprises in hosts.
add_compile_definitions(QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING QT_NO_FOREACH
  QT_DISABLE_DEPRECATED_BEFORE=0x050F00)
