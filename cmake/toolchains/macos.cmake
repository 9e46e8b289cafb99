# macOS, on ARM 64 or x86-64 as ZIG_TARGET says: compiled and linked, for nothing here runs it. A
# warning is an error, since nobody will see what comes of it.
set(CMAKE_SYSTEM_NAME Darwin)
string(REGEX MATCH "^[^-]+" CMAKE_SYSTEM_PROCESSOR "${ZIG_TARGET}")
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ZIG_TARGET)
include(${CMAKE_CURRENT_LIST_DIR}/zig.cmake)
set(CMAKE_INSTALL_NAME_TOOL true)
# In place of Apple's kit: declarations and names of what is called of its frameworks.
set(CMAKE_C_FLAGS_INIT "-F${CMAKE_CURRENT_LIST_DIR}/macos")
set(CMAKE_CXX_FLAGS_INIT "-F${CMAKE_CURRENT_LIST_DIR}/macos")
