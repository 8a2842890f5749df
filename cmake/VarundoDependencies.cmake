# Qt, found with an error that says what to install.
set(QT_NO_CREATE_VERSIONLESS_TARGETS ON)
foreach(component Core Gui Network SerialPort)
  find_package(Qt5${component} 5.15 QUIET CONFIG)
  if(NOT Qt5${component}_FOUND)
    message(FATAL_ERROR "Qt ${component} 5.15 or newer (of Qt 5) is missing. "
      "Debian: apt-get install qtbase5-dev libqt5serialport5-dev")
  endif()
endforeach()
if(VARUNDO_BUILD_TESTS)
  find_package(Qt5Test 5.15 REQUIRED CONFIG)
endif()

if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 9)
  message(FATAL_ERROR "C++17 as used here needs GCC 9 or newer; this is ${CMAKE_CXX_COMPILER_VERSION}")
endif()

# No implicit conversion from char* to QString, no old-style connects, no unqualified 'signals' surprises in hosts.
add_compile_definitions(QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING QT_NO_FOREACH
  QT_DISABLE_DEPRECATED_BEFORE=0x050F00)
