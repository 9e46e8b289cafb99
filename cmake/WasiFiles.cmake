# Files for the tests on WebAssembly: zig builds its C++ library for it without them, but brings their
# sources. Included where tests are built; what links WasiFiles has <fstream> and <filesystem>.
cmake_path(GET CMAKE_CXX_COMPILER PARENT_PATH zig_programs)
file(GLOB LIBCXX ${zig_programs}/../lib/python3*/site-packages/ziglang/lib/libcxx)
file(GLOB sources ${LIBCXX}/src/filesystem/*.cpp)
add_library(WasiFiles STATIC ${sources} ${LIBCXX}/src/fstream.cpp
                             ${LIBCXX}/src/ios.instantiations.cpp)
# The one copying call that musl has elsewhere is missing here.
target_compile_options(WasiFiles PUBLIC -U_LIBCPP_HAS_FILESYSTEM -D_LIBCPP_HAS_FILESYSTEM=1
    PRIVATE -U_LIBCPP_HAS_MUSL_LIBC -D_LIBCPP_HAS_MUSL_LIBC=0 -w)
target_compile_definitions(WasiFiles PRIVATE _LIBCPP_BUILDING_LIBRARY)
target_include_directories(WasiFiles PRIVATE ${LIBCXX}/src ${LIBCXX}/libc)
target_compile_features(WasiFiles PRIVATE cxx_std_23)
