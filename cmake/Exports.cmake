# What a shared library shows of itself: its interface, and nothing of the compiler's run time or of
# templates of the C++ library. The visibility of the sources does most of it.
include(CheckLinkerFlag)
if(NOT WIN32 AND NOT APPLE)
    check_linker_flag(CXX -Wl,--exclude-libs,ALL LINKER_HIDES_ARCHIVES)
endif()

# The map is a version script; formats without such have visibility alone.
function(export_interface library map)
    if(WIN32 OR APPLE)
        return()
    endif()
    target_link_options(${library} PRIVATE -Wl,--version-script=${map})
    if(LINKER_HIDES_ARCHIVES)
        target_link_options(${library} PRIVATE -Wl,--exclude-libs,ALL)
    endif()
    if(NOT CORVANTIS_SANITIZE)
        target_link_options(${library} PRIVATE -Wl,--no-undefined)
    endif()
endfunction()
