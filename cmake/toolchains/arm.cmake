# Cross compiles for 32-bit ARM with Debian's g++-arm-linux-gnueabihf; programs run in qemu-user.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
# Static, so that the emulator needs no other libraries.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
# Files beyond 2 GB, as on platforms whose long is wider.
set(CMAKE_CXX_FLAGS_INIT "-D_FILE_OFFSET_BITS=64 -Wno-psabi")
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm-static)
set(CMAKE_FIND_ROOT_PATH /usr/arm-linux-gnueabihf)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
include(${CMAKE_CURRENT_LIST_DIR}/headers.cmake)
