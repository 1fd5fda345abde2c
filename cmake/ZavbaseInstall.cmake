# The installed package in four components: runtime (the library), dev (headers, CMake package, pkg-config file, what
# debuggers read), tools, doc. Every file finds the others relative to itself, so the installed tree may be moved.
include(CMakePackageConfigHelpers)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zavbase)

install(TARGETS zavbase EXPORT zavbase-targets
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev)
if(MINGW)
    # The compiler's run-time libraries; a program finds them beside itself.
    foreach(name libstdc++-6 libgcc_s_seh-1 libgcc_s_dw2-1 libwinpthread-1)
        execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}.dll
                        OUTPUT_VARIABLE dll OUTPUT_STRIP_TRAILING_WHITESPACE)
        if(NOT IS_ABSOLUTE "${dll}")
            find_file(found_${name} ${name}.dll PATH_SUFFIXES lib bin)
            set(dll ${found_${name}})
        endif()
        if(EXISTS "${dll}")
            install(FILES ${dll} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
        endif()
    endforeach()
endif()

install(DIRECTORY ${PROJECT_SOURCE_DIR}/zavbase DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev
        FILES_MATCHING PATTERN "*.h" PATTERN "*_internal.h" EXCLUDE PATTERN "os" EXCLUDE)
install(EXPORT zavbase-targets NAMESPACE zavbase:: DESTINATION ${package_dir} COMPONENT dev)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/zavbase-config.cmake.in
                              ${PROJECT_BINARY_DIR}/zavbase-config.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/zavbase-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zavbase-config.cmake ${PROJECT_BINARY_DIR}/zavbase-config-version.cmake
        DESTINATION ${package_dir} COMPONENT dev)

# lib/pkgconfig or lib/ARCHITECTURE/pkgconfig: the prefix is one folder further up in the second.
file(RELATIVE_PATH up /root/${CMAKE_INSTALL_LIBDIR}/pkgconfig /root)
string(REGEX REPLACE "/$" "" ZAVBASE_PC_PREFIX "${up}")
if(ZAVBASE_IS_STATIC)
    list(TRANSFORM ZAVBASE_SYSTEM_LIBRARIES PREPEND -l OUTPUT_VARIABLE libraries)
    string(JOIN " " ZAVBASE_PC_LIBS ${ZAVBASE_STATIC_LINK} -lzavbase ${libraries})
    set(ZAVBASE_PC_CFLAGS " -DZAVBASE_STATIC")
else()
    set(ZAVBASE_PC_LIBS -lzavbase)
    set(ZAVBASE_PC_CFLAGS "")
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/zavbase.pc.in ${PROJECT_BINARY_DIR}/zavbase.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zavbase.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)

# What debuggers show of the objects: gdb loads its printers from beside the library.
if(NOT WIN32 AND NOT ZAVBASE_IS_STATIC)
    install(FILES ${PROJECT_SOURCE_DIR}/tools/debug/zavbase-gdb.py DESTINATION ${CMAKE_INSTALL_LIBDIR}
            COMPONENT dev RENAME libzavbase.so.${PROJECT_VERSION}-gdb.py)
endif()
install(FILES ${PROJECT_SOURCE_DIR}/tools/debug/zavbase.natvis DESTINATION ${CMAKE_INSTALL_DATADIR}/zavbase
        COMPONENT dev)

if(ZAVBASE_BUILD_TOOLS)
    file(RELATIVE_PATH to_library /root/${CMAKE_INSTALL_BINDIR} /root/${CMAKE_INSTALL_LIBDIR})
    set(tools zavconf zavlock zavmod zavmsg zavtrace)
    set_target_properties(${tools} PROPERTIES INSTALL_RPATH "$ORIGIN/${to_library}")
    install(TARGETS ${tools} EXPORT zavbase-tools
            RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
    install(EXPORT zavbase-tools NAMESPACE zavbase:: DESTINATION ${package_dir} COMPONENT tools)
endif()

install(FILES ${PROJECT_SOURCE_DIR}/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT doc)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs ${PROJECT_SOURCE_DIR}/examples DESTINATION ${CMAKE_INSTALL_DOCDIR}
        COMPONENT doc PATTERN "CMakeLists.txt" EXCLUDE)

if(PROJECT_IS_TOP_LEVEL)
    add_custom_target(uninstall VERBATIM COMMAND ${CMAKE_COMMAND} -DBUILD_DIR=${CMAKE_BINARY_DIR}
                      -P ${PROJECT_SOURCE_DIR}/cmake/uninstall.cmake)
endif()
