# varundo_limit_exports(TARGET NODE name [CLASSES ...] [NAMESPACES ...] [DATA ...])
#
# Leaves exported what is named here and nothing else, under a symbol version of the library's own: of each class its
# functions, its tables and the meta object, of each namespace its free functions, and data by name. A class's nested
# classes, what the compiler makes of others' templates, and the private functions that packaging/abi/TARGET.private
# lists are hidden, although the class as a whole is marked as exported. scripts/abi says what is missing in either list.
function(varundo_limit_exports target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "NODE" "CLASSES;NAMESPACES;DATA")
  set(private_file "${PROJECT_SOURCE_DIR}/packaging/abi/${target}.private")
  file(STRINGS "${private_file}" private_functions REGEX "^[^#]")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${private_file}")

  # Patterns are without quotes, which is why a '?' stands for a blank or a tilde; whole names are in quotes.
  set(global)
  foreach(class IN LISTS arg_CLASSES)
    string(REGEX MATCH "[^:]+$" name "${class}")
    string(APPEND global
      "      ${class}::[a-z]*;\n      ${class}::${name}*;\n      ${class}::?${name}*;\n      non-virtual?thunk?to?${class}::*;\n"
      "      \"vtable for ${class}\";\n      \"typeinfo for ${class}\";\n      \"typeinfo name for ${class}\";\n")
  endforeach()
  foreach(namespace IN LISTS arg_NAMESPACES)
    string(APPEND global "      ${namespace}::[a-z]*;\n")
  endforeach()
  foreach(data IN LISTS arg_DATA)
    string(APPEND global "      ${data};\n")
  endforeach()
  set(local)
  foreach(function IN LISTS private_functions)
    string(APPEND local "      \"${function}\";\n")
  endforeach()

  set(map "${CMAKE_CURRENT_BINARY_DIR}/${target}.map")
  file(CONFIGURE OUTPUT "${map}" @ONLY CONTENT
"${arg_NODE} {
  global:
    extern \"C++\" {
${global}    };
  local:
    extern \"C++\" {
${local}    };
    *;
};
")
  target_link_options(${target} PRIVATE "LINKER:--version-script=${map}")
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${map}")
endfunction()
