# x86-64 Linux with glibc 2.17 or newer: what wheels for Python are built for.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(ZIG_TARGET x86_64-linux-gnu.2.17)
# Without names and debugging information, which a wheel has no use for.
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-s")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-s")
set(CMAKE_STRIP true CACHE STRING "")
include(${CMAKE_CURRENT_LIST_DIR}/zig.cmake)
set(CMAKE_CROSSCOMPILING_EMULATOR "env" CACHE STRING "Runs the programs")
