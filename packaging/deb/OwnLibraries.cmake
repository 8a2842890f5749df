# Runs before cpack makes the packages: tells dpkg-shlibdeps which of them has which of our libraries, so that these
# dependencies too come from what a binary is linked to. Packages of one build go together; they are tested that way.
file(GLOB links RELATIVE "${CPACK_TEMPORARY_DIRECTORY}" "${CPACK_TEMPORARY_DIRECTORY}/*/usr/lib*/lib*.so.*"
  "${CPACK_TEMPORARY_DIRECTORY}/*/usr/lib/*/lib*.so.*")
set(shlibs)
foreach(link IN LISTS links)
  if(link MATCHES "^([^/]+)/.*/(lib[^/]+)\\.so\\.([0-9]+)$")
    string(TOUPPER "${CMAKE_MATCH_1}" id)
    string(APPEND shlibs
      "${CMAKE_MATCH_2} ${CMAKE_MATCH_3} ${CPACK_DEBIAN_${id}_PACKAGE_NAME} (= ${CPACK_PACKAGE_VERSION})\n")
  endif()
endforeach()
if(NOT shlibs)
  message(FATAL_ERROR "There is no library of ours under ${CPACK_TEMPORARY_DIRECTORY}")
endif()
# Where there is no binary, cpack does not ask, and would leave the file in the package.
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  set(staged "${CPACK_TEMPORARY_DIRECTORY}/${component}")
  file(GLOB binaries "${staged}/usr/bin/*" "${staged}/usr/lib*/lib*.so.*" "${staged}/usr/lib/*/lib*.so.*")
  if(binaries)
    file(WRITE "${staged}/debian/shlibs.local" "${shlibs}")
  endif()
endforeach()
