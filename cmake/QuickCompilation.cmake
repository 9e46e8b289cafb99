# Included where tests are built: the library is tested as it ships, the tests need not be fast.
set(CMAKE_CXX_FLAGS_RELEASE "-O1")

# A compiler cache keeps nothing that was compiled with a precompiled header.
function(precompile target header)
    if(NOT CMAKE_CXX_COMPILER_LAUNCHER)
        target_precompile_headers(${target} PRIVATE ${header})
    endif()
endfunction()
