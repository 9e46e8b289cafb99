# For a cross compiler, the tool's libraries from this machine's own packages: all three can be used
# as headers alone. Only their own folders come into the compiler's sight, not all of the machine's.
foreach(library "CLI11 CLI CLI11::CLI11" "fmt fmt fmt::fmt"
                "nlohmann_json nlohmann nlohmann_json::nlohmann_json")
    separate_arguments(library)
    list(GET library 0 name)
    list(GET library 1 folder)
    list(GET library 2 target)
    find_path(${name}_INCLUDES ${folder} PATHS /usr/include REQUIRED NO_DEFAULT_PATH
              NO_CMAKE_FIND_ROOT_PATH)
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/host-headers/${name})
    file(CREATE_LINK ${${name}_INCLUDES}/${folder}
         ${PROJECT_BINARY_DIR}/host-headers/${name}/${folder} SYMBOLIC)
    add_library(${target} INTERFACE IMPORTED)
    target_include_directories(${target} SYSTEM INTERFACE ${PROJECT_BINARY_DIR}/host-headers/${name})
endforeach()
target_compile_definitions(fmt::fmt INTERFACE FMT_HEADER_ONLY)
