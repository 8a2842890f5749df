# What is found after installation: headers, the CMake package, the pkg-config file, manual pages, completions.
#
# Components: Server, Platform and Client are a shared library each, Development is what a program is built with, Tools
# the programs themselves.
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
# Of the system's own directories pkg-config says where they are in a sysroot; elsewhere the file says what is beside it,
# also when it was installed into another prefix than it was configured for.
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr" OR IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  set(pkgconfig_prefix "${CMAKE_INSTALL_PREFIX}")
else()
  file(RELATIVE_PATH pkgconfig_prefix "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" /prefix)
  string(REGEX REPLACE "/$" "" pkgconfig_prefix "\${pcfiledir}/${pkgconfig_prefix}")
endif()
configure_file(cmake/varundoserver.pc.in "${PROJECT_BINARY_DIR}/varundoserver.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/varundoserver.pc"
  DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT Development)

# varundo_install_compressed(FILE DESTINATION COMPONENT): as FILE.gz, the same bytes each time. Without gzip as it is.
find_program(VARUNDO_GZIP gzip DOC "Compresses manual pages and changelogs")
function(varundo_install_compressed file destination component)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${file}")
  if(VARUNDO_GZIP)
    get_filename_component(name "${file}" NAME)
    set(compressed "${PROJECT_BINARY_DIR}/compressed/${name}.gz")
    file(MAKE_DIRECTORY "${PROJECT_BINARY_DIR}/compressed")
    execute_process(COMMAND "${VARUNDO_GZIP}" -9nc "${file}" OUTPUT_FILE "${compressed}" COMMAND_ERROR_IS_FATAL ANY)
    set(file "${compressed}")
  endif()
  install(FILES "${file}" DESTINATION "${destination}" COMPONENT ${component})
endfunction()

foreach(program varundo-simulator zelctl)
  if(TARGET ${program})
    varundo_install_compressed("${PROJECT_SOURCE_DIR}/packaging/man/${program}.1" "${CMAKE_INSTALL_MANDIR}/man1" Tools)
    install(FILES packaging/completions/${program}
      DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" COMPONENT Tools)
  endif()
endforeach()
