# What a host finds after installation: headers, the CMake package, the pkg-config file.
include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/VarundoServer")

install(DIRECTORY include/Tolvar DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT Development)
install(TARGETS varundo_protocol EXPORT VarundoServerTargets)
install(EXPORT VarundoServerTargets NAMESPACE Varundo:: DESTINATION "${package_dir}" COMPONENT Development)

configure_package_config_file(cmake/VarundoServerConfig.cmake.in "${PROJECT_BINARY_DIR}/VarundoServerConfig.cmake"
  INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/VarundoServerConfigVersion.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/VarundoServerConfig.cmake"
    "${PROJECT_BINARY_DIR}/VarundoServerConfigVersion.cmake"
  DESTINATION "${package_dir}" COMPONENT Development)

# Every host calls the platform itself. An external one is the host's to link.
set(pkgconfig_libs "-lvarundoserver")
if(VARUNDO_PLATFORM STREQUAL "reference")
  string(APPEND pkgconfig_libs " -lvarundoplatform")
endif()
configure_file(cmake/varundoserver.pc.in "${PROJECT_BINARY_DIR}/varundoserver.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/varundoserver.pc"
  DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT Development)
