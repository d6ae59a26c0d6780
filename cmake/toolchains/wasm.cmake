# Cross compiles for WebAssembly with Debian's emscripten; programs run in node, on its files.
include(/usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake)
set(CMAKE_CXX_FLAGS_INIT -fwasm-exceptions)
set(CMAKE_EXE_LINKER_FLAGS_INIT
    "-sNODERAWFS=1 -sALLOW_MEMORY_GROWTH=1 -sEXIT_RUNTIME=1 -sTOTAL_STACK=8388608")
set(CMAKE_CROSSCOMPILING_EMULATOR "node;--no-experimental-fetch")
include(${CMAKE_CURRENT_LIST_DIR}/headers.cmake)
