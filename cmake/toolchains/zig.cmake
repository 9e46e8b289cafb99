# What the hosts built with zig's clang have in common; scripts/setup-zig installs it. Included with
# ZIG_TARGET set.
set(ZIG_FOLDER ${CMAKE_CURRENT_LIST_DIR}/../../build/zig/bin)
cmake_path(NORMAL_PATH ZIG_FOLDER)
set(CMAKE_C_COMPILER ${ZIG_FOLDER}/${ZIG_TARGET}-cc)
set(CMAKE_CXX_COMPILER ${ZIG_FOLDER}/${ZIG_TARGET}-c++)
set(CMAKE_AR ${ZIG_FOLDER}/zig-ar CACHE FILEPATH "")
set(CMAKE_RANLIB ${ZIG_FOLDER}/zig-ranlib CACHE FILEPATH "")

# Nothing of the machine that builds.
set(CMAKE_FIND_ROOT_PATH ${ZIG_FOLDER})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
