# zavbase_add_test(NAME SOURCES...)           a test program on the public interface
# zavbase_add_internal_test(NAME SOURCES...)  the same, linked from the library's objects: it may use private
#                                             headers and put a fake in place of a file of zavbase/os
# Every test program is one ctest; its tests live in files that mirror the library's folders. Their common main
# (tests/support) names a test that hangs, long before ctest would end the program.
find_package(Threads REQUIRED)

# GoogleTest comes as source, so that each lane builds it with its own compiler and switches.
if(ZAVBASE_GTEST_SOURCE)
    set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
    set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
    add_subdirectory(${ZAVBASE_GTEST_SOURCE} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
    # Its headers are not ours to warn about.
    get_target_property(dirs gtest INTERFACE_INCLUDE_DIRECTORIES)
    set_target_properties(gtest PROPERTIES INTERFACE_SYSTEM_INCLUDE_DIRECTORIES "${dirs}")
else()
    find_package(GTest REQUIRED)
    add_library(gtest ALIAS GTest::gtest)
endif()

# After zavbase_options: tests assign objects to themselves, and a fake uses less than what it stands for.
add_library(zavbase_test_options INTERFACE)
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    target_compile_options(zavbase_test_options INTERFACE -Wno-self-assign-overloaded -Wno-unused-private-field)
endif()

function(zavbase_test_program name)
    add_executable(${name} ${ARGN} $<TARGET_OBJECTS:zavbase_test_main>)
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
    target_compile_definitions(${name} PRIVATE ZAVBASE_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data"
                               ZAVBASE_TEST_EMULATOR="${CMAKE_CROSSCOMPILING_EMULATOR}")
    target_link_libraries(${name} PRIVATE zavbase_options zavbase_test_options gtest
                                          zavbase_test_watchdog Threads::Threads)
endfunction()

function(zavbase_as_test name)
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES TIMEOUT 300)
endfunction()

function(zavbase_add_test name)
    zavbase_test_program(${name} ${ARGN})
    target_link_libraries(${name} PRIVATE zavbase::zavbase)
    zavbase_as_test(${name})
endfunction()

function(zavbase_add_internal_test name)
    zavbase_test_program(${name} ${ARGN} $<TARGET_OBJECTS:zavbase_core>)
    target_compile_definitions(${name} PRIVATE ZAVBASE_BUILDING)
    target_link_libraries(${name} PRIVATE zavbase_os)
    zavbase_as_test(${name})
endfunction()
