# A shared library for Windows: named as it is there, and with an import library for each linker.
# That of mingw-w64, LIBRARY.dll.a, comes of itself; LIBRARY.lib, in the short form that Microsoft's
# tools write and read, is made of the list of exports.
find_program(LLVM_DLLTOOL NAMES llvm-dlltool llvm-dlltool-14 REQUIRED)

function(windows_library target)
    set(folder ${CMAKE_CURRENT_BINARY_DIR})
    set_target_properties(${target} PROPERTIES PREFIX "")
    target_link_options(${target} PRIVATE -Wl,--output-def,${folder}/${target}.def)
    add_custom_command(TARGET ${target} POST_BUILD
        COMMAND ${LLVM_DLLTOOL} -m i386:x86-64 -D $<TARGET_FILE_NAME:${target}>
                -d ${folder}/${target}.def -l ${folder}/${target}.lib
        BYPRODUCTS ${folder}/${target}.def ${folder}/${target}.lib VERBATIM)
    install(FILES ${folder}/${target}.lib DESTINATION ${CMAKE_INSTALL_LIBDIR})
endfunction()
