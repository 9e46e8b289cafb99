# 32-bit big-endian PowerPC, the library's home, on a Debian cross compiler and user-mode qemu.
# Plain char is unsigned here and stays so: the records name the signedness of every byte.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ppc)
set(CMAKE_C_COMPILER powerpc-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER powerpc-linux-gnu-g++)

set(CMAKE_FIND_ROOT_PATH /usr/powerpc-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The emulator stops at an instruction of the maths library: programs run against a patched copy.
get_property(TRYING GLOBAL PROPERTY IN_TRY_COMPILE)
if(NOT TRYING)
    set(RUNTIME ${CMAKE_BINARY_DIR}/runtime)
    if(NOT EXISTS ${RUNTIME}/lib/libm.so.6)
        execute_process(
            COMMAND /usr/bin/python3 ${CMAKE_CURRENT_LIST_DIR}/patch_runtime.py
                    ${CMAKE_FIND_ROOT_PATH}/lib ${RUNTIME}/lib
            COMMAND_ERROR_IS_FATAL ANY)
    endif()
    set(CMAKE_CROSSCOMPILING_EMULATOR "qemu-ppc;-L;${RUNTIME}" CACHE STRING "Runs the programs")
endif()
