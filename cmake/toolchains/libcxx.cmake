# clang with libc++ instead of the standard library of the system.
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_CXX_FLAGS_INIT -stdlib=libc++)
include(${CMAKE_CURRENT_LIST_DIR}/headers.cmake)
