# Linux with glibc 2.17 or newer, on x86-64 or 64-bit ARM as ZIG_TARGET says: what wheels for Python are
# built for. Programs for the other processor run in user-mode qemu, on Debian's C library.
set(CMAKE_SYSTEM_NAME Linux)
string(REGEX MATCH "^[^-]+" CMAKE_SYSTEM_PROCESSOR "${ZIG_TARGET}")
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ZIG_TARGET)
# Without names and debugging information, which a wheel has no use for.
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-s")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-s")
set(CMAKE_STRIP true CACHE STRING "")
include(${CMAKE_CURRENT_LIST_DIR}/zig.cmake)
set(emulator env)
if(NOT CMAKE_SYSTEM_PROCESSOR STREQUAL CMAKE_HOST_SYSTEM_PROCESSOR)
    set(emulator "qemu-${CMAKE_SYSTEM_PROCESSOR};-L;/usr/${CMAKE_SYSTEM_PROCESSOR}-linux-gnu")
endif()
set(CMAKE_CROSSCOMPILING_EMULATOR "${emulator}" CACHE STRING "Runs the programs")
