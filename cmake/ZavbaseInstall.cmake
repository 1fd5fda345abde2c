# The installed package: the library, its public headers, a CMake package and a pkg-config file. Both files find
# everything relative to themselves, so the installed tree may be moved.
include(CMakePackageConfigHelpers)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zavbase)

install(TARGETS zavbase EXPORT zavbase-targets)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/zavbase DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        FILES_MATCHING PATTERN "*.h" PATTERN "*_internal.h" EXCLUDE PATTERN "os" EXCLUDE)
install(EXPORT zavbase-targets NAMESPACE zavbase:: DESTINATION ${package_dir})

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/zavbase-config.cmake.in
                              ${PROJECT_BINARY_DIR}/zavbase-config.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/zavbase-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zavbase-config.cmake ${PROJECT_BINARY_DIR}/zavbase-config-version.cmake
        DESTINATION ${package_dir})

# lib/pkgconfig or lib/ARCHITECTURE/pkgconfig: the prefix is one folder further up in the second.
file(RELATIVE_PATH up /root/${CMAKE_INSTALL_LIBDIR}/pkgconfig /root)
string(REGEX REPLACE "/$" "" ZAVBASE_PC_PREFIX "${up}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/zavbase.pc.in ${PROJECT_BINARY_DIR}/zavbase.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zavbase.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# What debuggers show of the objects: gdb loads its printers from beside the library.
if(NOT WIN32)
    install(FILES ${PROJECT_SOURCE_DIR}/tools/debug/zavbase-gdb.py DESTINATION ${CMAKE_INSTALL_LIBDIR}
            RENAME libzavbase.so.${PROJECT_VERSION}-gdb.py)
endif()
install(FILES ${PROJECT_SOURCE_DIR}/tools/debug/zavbase.natvis DESTINATION ${CMAKE_INSTALL_DATADIR}/zavbase)
