# The Debian packages, made by cpack in a build that is to be installed into /usr. scripts/package builds them all and
# docs/packaging.md tells what is in them.
if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  return()
endif()

set(VARUNDO_PACKAGE_MAINTAINER "VarundoServer maintainers <maintainers@varundoserver.example>" CACHE STRING
  "Who answers for the packages: name and address. Whoever hands packages out sets their own")
set(VARUNDO_PACKAGE_ARCHITECTURE "" CACHE STRING "Debian's name for the architecture; empty: this machine's")
set(VARUNDO_PACKAGE_LIBRARY_DIRS "" CACHE STRING
  "When cross building: directories with the target's libraries, for finding out what the packages depend on")

set(deb "${PROJECT_SOURCE_DIR}/packaging/deb")

# varundo_package(COMPONENT NAME name SECTION section SUMMARY line DESCRIPTION line... [DEPENDS ...] [RECOMMENDS ...])
#
# What a binary needs is found out by dpkg-shlibdeps; DEPENDS says what no binary shows.
function(varundo_package component)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "NAME;SECTION;SUMMARY" "DESCRIPTION;DEPENDS;RECOMMENDS")
  string(TOUPPER "${component}" id)
  list(JOIN arg_DEPENDS ", " depends)
  list(JOIN arg_RECOMMENDS ", " recommends)
  list(JOIN arg_DESCRIPTION "\n" description)
  set(CPACK_DEBIAN_${id}_PACKAGE_NAME "${arg_NAME}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${id}_PACKAGE_SECTION "${arg_SECTION}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${id}_PACKAGE_DEPENDS "${depends}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${id}_PACKAGE_RECOMMENDS "${recommends}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${id}_DESCRIPTION "${arg_SUMMARY}\n${description}" PARENT_SCOPE)
  set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} ${component} PARENT_SCOPE)

  # What every package carries: whose it is, and what is new.
  set(doc "share/doc/${arg_NAME}")
  varundo_install_compressed("${deb}/changelog" "${doc}" ${component})
  install(FILES "${deb}/copyright" DESTINATION "${doc}" COMPONENT ${component})
  if(EXISTS "${deb}/${arg_NAME}.lintian-overrides")
    install(FILES "${deb}/${arg_NAME}.lintian-overrides" DESTINATION share/lintian/overrides RENAME "${arg_NAME}"
      COMPONENT ${component})
  endif()
endfunction()

set(CPACK_COMPONENTS_ALL)
varundo_package(Server NAME libvarundoserver1 SECTION libs
  SUMMARY "ZEL interface server for pipe-inspection camera control units"
  DESCRIPTION
    "Inside a unit's recording application it lets an outside controller drive the"
    "on-screen display and read measurement values, over a USB serial adapter or"
    "over TCP.")
install(FILES "${PROJECT_SOURCE_DIR}/packaging/udev/70-varundo-serial.rules"
  DESTINATION share/doc/libvarundoserver1/examples COMPONENT Server)
set(libraries "libvarundoserver1 (= ${PROJECT_VERSION})")

if(TARGET varundoplatform)
  varundo_package(Platform NAME libvarundoplatform1 SECTION libs
    SUMMARY "host SDK of the ZEL interface server, with an implementation"
    DESCRIPTION
      "Overlay, devices, settings and clock as libvarundoserver expects them of its"
      "host, with a complete implementation behind them.")
  list(APPEND libraries "libvarundoplatform1 (= ${PROJECT_VERSION})")
endif()

if(TARGET zelclient)
  varundo_package(Client NAME libzelclient1 SECTION libs
    SUMMARY "controller's side of the ZEL interface"
    DESCRIPTION
      "Makes requests to a camera control unit and understands its answers, over TCP"
      "and serial lines.")
  list(APPEND libraries "libzelclient1 (= ${PROJECT_VERSION})")
endif()

if(TARGET zelctl AND TARGET varundo-simulator)
  # Without a font the simulated picture has no text; any other font will do as well.
  varundo_package(Tools NAME zel-tools SECTION electronics
    RECOMMENDS fonts-dejavu-core
    SUMMARY "simulated camera control unit, and a controller's command line"
    DESCRIPTION
      "varundo-simulator is a whole unit in one process, with a picture, devices that"
      "move and a serial line without hardware."
      ""
      "zelctl reads values of a unit, moves and colours what its overlay shows, writes"
      "texts, and says what is on the wire.")
  install(FILES
      "${PROJECT_SOURCE_DIR}/docs/profile-format.md" "${PROJECT_SOURCE_DIR}/docs/protocol.md"
      "${PROJECT_SOURCE_DIR}/docs/simulator.md" "${PROJECT_SOURCE_DIR}/docs/zelctl.md"
    DESTINATION share/doc/zel-tools COMPONENT Tools)
  install(FILES "${PROJECT_SOURCE_DIR}/packaging/systemd/varundo-simulator.service"
    DESTINATION share/doc/zel-tools/examples COMPONENT Tools)
endif()

varundo_package(Development NAME libvarundoserver-dev SECTION libdevel
  DEPENDS ${libraries} "qtbase5-dev (>= 5.15)" "libqt5serialport5-dev (>= 5.15)"
  SUMMARY "ZEL interface server, development files"
  DESCRIPTION
    "Headers, CMake package and pkg-config file of the server, of its host SDK and"
    "of the controller's library.")
install(FILES "${PROJECT_SOURCE_DIR}/docs/integration.md"
  DESTINATION share/doc/libvarundoserver-dev COMPONENT Development)
# What somebody has built there is not part of it.
install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples/host"
  DESTINATION share/doc/libvarundoserver-dev/examples COMPONENT Development
  FILES_MATCHING PATTERN CMakeLists.txt PATTERN Makefile PATTERN "*.cpp" PATTERN "*.h" PATTERN "*.json" PATTERN "*.md"
  PATTERN build EXCLUDE)

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_PACKAGE_NAME varundoserver)
set(CPACK_PACKAGE_VENDOR "")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # or it would be the first line of each package's description
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE varundoserver)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${VARUNDO_PACKAGE_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE none) # they are compressed when they are finished
if(VARUNDO_PACKAGE_ARCHITECTURE)
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE "${VARUNDO_PACKAGE_ARCHITECTURE}")
endif()

# The debug information goes into packages of its own, found by build id.
set(CPACK_DEBIAN_DEBUGINFO_PACKAGE ON)
set(CPACK_STRIP_FILES OFF)
set(CPACK_OBJCOPY_EXECUTABLE "${CMAKE_OBJCOPY}")
set(CPACK_READELF_EXECUTABLE "${CMAKE_READELF}")

# Our libraries are found here, those of the system where the system has them.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
  "${PROJECT_BINARY_DIR}/src" "${PROJECT_BINARY_DIR}/platform" "${PROJECT_BINARY_DIR}/client"
  ${VARUNDO_PACKAGE_LIBRARY_DIRS})
set(CPACK_PRE_BUILD_SCRIPTS "${deb}/OwnLibraries.cmake")
# Who links one of ours needs this version of it or a newer one.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_POST_BUILD_SCRIPTS "${deb}/FinishPackages.cmake")

include(CPack)
