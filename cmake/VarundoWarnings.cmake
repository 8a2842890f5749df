# The warnings every target of ours is built with. CMAKE_COMPILE_WARNING_AS_ERROR makes errors of them.
add_library(varundo_warnings INTERFACE)
target_compile_options(varundo_warnings INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  $<$<CXX_COMPILER_ID:Clang>:-Wno-gnu-zero-variadic-macro-arguments>) # the logging macros of Qt
