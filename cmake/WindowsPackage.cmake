# What Windows's ZIP holds besides, and how it is made: a folder to be unpacked anywhere.
configure_file(cmake/WindowsReadMe.txt.in README.txt @ONLY NEWLINE_STYLE CRLF)
configure_file(LICENSE LICENSE.txt NEWLINE_STYLE CRLF @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/README.txt ${PROJECT_BINARY_DIR}/LICENSE.txt DESTINATION .)

# Of what is linked into the libraries and the tool.
foreach(part "CLI11 libcli11-dev" "fmt libfmt-dev" "nlohmann-json nlohmann-json3-dev"
             "GCC gcc-mingw-w64-base" "mingw-w64 mingw-w64-x86-64-dev")
    separate_arguments(part)
    list(GET part 0 name)
    list(GET part 1 package)
    install(FILES /usr/share/doc/${package}/copyright DESTINATION licences RENAME ${name}.txt)
endforeach()

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_NAME corvantis)
set(CPACK_PACKAGE_FILE_NAME corvantis-${PROJECT_VERSION}-windows-x86-64)
set(CPACK_STRIP_FILES ON)
include(CPack)
