# Runs after cpack made the packages, on each of them: what cpack does not do as Debian wants it.
#
#   - libraries are announced to the loader by a trigger, without scripts
#   - Multi-Arch says whether a package may be installed for several architectures
#   - a package with debug information has sums of its files under the names they are installed by, permissions of data,
#     and the documents of the package it belongs to
#   - the same bytes each time, whatever the number of processors
find_program(DPKG_DEB dpkg-deb REQUIRED)

function(dpkg_deb)
  execute_process(COMMAND "${DPKG_DEB}" ${ARGN} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endfunction()

function(use_a_trigger control)
  file(REMOVE "${control}/postinst" "${control}/postrm")
  file(WRITE "${control}/triggers" "activate-noawait ldconfig\n")
endfunction()

# Libraries lie in a directory of their architecture; programs are run, whatever the architecture of who runs them.
function(set_multi_arch control_file package)
  file(READ "${control_file}" fields)
  string(REGEX REPLACE "\nPackage-Type: [^\n]*" "" fields "${fields}")
  string(REGEX REPLACE "\n+$" "\n" fields "${fields}")
  if(package MATCHES "^lib")
    string(APPEND fields "Multi-Arch: same\n")
  elseif(NOT package MATCHES "-dbgsym$")
    string(APPEND fields "Multi-Arch: foreign\n")
  endif()
  file(WRITE "${control_file}" "${fields}")
endfunction()

function(mend_debug_package tree package)
  string(REGEX REPLACE "-dbgsym$" "" debugged "${package}")
  file(MAKE_DIRECTORY "${tree}/usr/share/doc")
  file(CREATE_LINK "${debugged}" "${tree}/usr/share/doc/${package}" SYMBOLIC)
  file(GLOB_RECURSE files LIST_DIRECTORIES FALSE RELATIVE "${tree}" "${tree}/usr/lib/debug/*")
  list(SORT files)
  set(sums)
  foreach(file IN LISTS files)
    file(CHMOD "${tree}/${file}" PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
    file(MD5 "${tree}/${file}" sum)
    string(APPEND sums "${sum}  ${file}\n")
  endforeach()
  file(WRITE "${tree}/DEBIAN/md5sums" "${sums}")
endfunction()

foreach(file IN LISTS CPACK_PACKAGE_FILES)
  get_filename_component(name "${file}" NAME)
  string(REGEX REPLACE "_.*" "" package "${name}")
  set(tree "${CPACK_TEMPORARY_DIRECTORY}/finish/${package}")
  file(REMOVE_RECURSE "${tree}")
  get_filename_component(parent "${tree}" DIRECTORY)
  file(MAKE_DIRECTORY "${parent}")
  dpkg_deb(--raw-extract "${file}" "${tree}")
  if(EXISTS "${tree}/DEBIAN/shlibs")
    use_a_trigger("${tree}/DEBIAN")
  endif()
  set_multi_arch("${tree}/DEBIAN/control" "${package}")
  if(package MATCHES "-dbgsym$")
    mend_debug_package("${tree}" "${package}")
  endif()
  dpkg_deb(--root-owner-group -Zxz --threads-max=1 --build "${tree}" "${file}")
endforeach()
