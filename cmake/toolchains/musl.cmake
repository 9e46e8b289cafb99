# x86-64 with the C library musl, whose loader is Debian's package of it: x86-64 runs the programs
# itself.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR x86_64-musl)
set(ZIG_TARGET x86_64-linux-musl)
include(${CMAKE_CURRENT_LIST_DIR}/zig.cmake)
# Else a program would hold the C library, and could not load the libraries that it is to test.
set(CMAKE_C_FLAGS_INIT "-dynamic")
set(CMAKE_CXX_FLAGS_INIT "-dynamic")
set(CMAKE_CROSSCOMPILING_EMULATOR "env" CACHE STRING "Runs the programs")
