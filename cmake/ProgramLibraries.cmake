# What the programs are built with beside the project itself.
find_package(Threads REQUIRED)
if(CMAKE_CROSSCOMPILING)
    include(${PROJECT_SOURCE_DIR}/cmake/HostHeaders.cmake)
else()
    find_package(CLI11 REQUIRED)
    find_package(fmt REQUIRED)
    find_package(nlohmann_json REQUIRED)
endif()
