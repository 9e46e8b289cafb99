# What an installation holds, and how other projects and the package manager find it.
include(CMakePackageConfigHelpers)

set(PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Corvantis)
set(INSTALLED_TARGETS Corvantis CorvantisReading)
set_target_properties(CorvantisReading PROPERTIES EXPORT_NAME Reading)
set(PKGCONFIG_MODULES corvantis corvantis-reading)
if(NOT ITC18_DRIVER)
    list(APPEND INSTALLED_TARGETS ITC18)
    list(APPEND PKGCONFIG_MODULES corvantis-simulator)
    set_target_properties(ITC18 PROPERTIES EXPORT_NAME Simulator)
    install(FILES driver/ITC18.h driver/simulator/ITC18Simulator.h
            DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
    # Nobody links it; it is of use to the programs that record, and is left out where they are.
    install(TARGETS CorvantisSimulatedPlayer
            RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT rig
            LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT rig)
endif()

install(TARGETS ${INSTALLED_TARGETS} EXPORT CorvantisTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library)
install(FILES itc-code/Corvantis.h reading/CorvantisReading.h driver/Player.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT CorvantisTargets NAMESPACE Corvantis:: DESTINATION ${PACKAGE_DIR})

configure_package_config_file(cmake/CorvantisConfig.cmake.in CorvantisConfig.cmake
                              INSTALL_DESTINATION ${PACKAGE_DIR})
write_basic_package_version_file(CorvantisConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/CorvantisConfig.cmake
              ${PROJECT_BINARY_DIR}/CorvantisConfigVersion.cmake
        DESTINATION ${PACKAGE_DIR})

# Relative to the file itself, so that an installation can be moved or staged.
file(RELATIVE_PATH PKGCONFIG_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
cmake_path(APPEND PKGCONFIG_LIBDIR "\${prefix}" ${CMAKE_INSTALL_LIBDIR})
cmake_path(APPEND PKGCONFIG_INCLUDEDIR "\${prefix}" ${CMAKE_INSTALL_INCLUDEDIR})
foreach(module ${PKGCONFIG_MODULES})
    configure_file(cmake/${module}.pc.in ${module}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${module}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()

install(FILES docs/recording.schema.json docs/protocol.schema.json DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/corvantis)

if(WIN32)
    include(cmake/WindowsPackage.cmake)
    return()
endif()

# Where Debian looks for it.
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/corvantis RENAME copyright)

# For the system's own Python; a wheel carries the library inside instead.
install(DIRECTORY python/corvantis DESTINATION lib/python3/dist-packages
        FILES_MATCHING PATTERN "*.py" PATTERN "*.json" PATTERN "py.typed" PATTERN "__pycache__" EXCLUDE)
# The page of `corvantis view`, if scripts/build-page has built it.
install(FILES build/page/viewer.html OPTIONAL
        DESTINATION lib/python3/dist-packages/corvantis)
install(PROGRAMS python/bin/corvantis-plot python/bin/corvantis-families python/bin/corvantis-nwb
                 python/bin/corvantis-index python/bin/corvantis-measure python/bin/corvantis-view
        DESTINATION ${CMAKE_INSTALL_BINDIR})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME corvantis)
set(CPACK_PACKAGE_CONTACT "The Corvantis developers <maintainers@corvantis.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "python3, python3-numpy")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "python3-matplotlib, python3-tqdm")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "python3-neo, python3-pandas")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
