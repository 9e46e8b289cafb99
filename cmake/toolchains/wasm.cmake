# WebAssembly with the system interface WASI, run by node. One thread, no exceptions, no libraries that
# are loaded: what is shared elsewhere is linked into each program.
set(CMAKE_SYSTEM_NAME Generic)
set(CMAKE_SYSTEM_PROCESSOR wasm32)
set(WASI TRUE)
set(ZIG_TARGET wasm32-wasi)
include(${CMAKE_CURRENT_LIST_DIR}/zig.cmake)
set(CMAKE_C_FLAGS_INIT "-D_WASI_EMULATED_SIGNAL -D_WASI_EMULATED_PROCESS_CLOCKS -D_WASI_EMULATED_GETPID")
set(CMAKE_CXX_FLAGS_INIT "${CMAKE_C_FLAGS_INIT} -fno-exceptions")
# Of all programs, because the compiler would build its C++ library once more for those without names.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-s")
# Node 20 may crash at its end if other threads of it still compile what became hot.
set(CMAKE_CROSSCOMPILING_EMULATOR "node;--no-warnings;--single-threaded;${CMAKE_CURRENT_LIST_DIR}/run_wasi.mjs" CACHE STRING "Runs the programs")
