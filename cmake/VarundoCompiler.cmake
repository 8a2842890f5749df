# The oldest compilers that are supported. What is older stops in the middle of a build, with an error nobody understands.
set(varundo_oldest_GNU 9)
set(varundo_oldest_Clang 11)
set(varundo_oldest "${varundo_oldest_${CMAKE_CXX_COMPILER_ID}}")
if(NOT varundo_oldest)
  message(FATAL_ERROR "This needs GCC ${varundo_oldest_GNU} or Clang ${varundo_oldest_Clang} or newer; "
    "the compiler is ${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION}. Debian: apt-get install g++")
elseif(CMAKE_CXX_COMPILER_VERSION VERSION_LESS varundo_oldest)
  message(FATAL_ERROR "This needs ${CMAKE_CXX_COMPILER_ID} ${varundo_oldest} or newer; "
    "the compiler is ${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION}. Debian: apt-get install g++")
endif()
