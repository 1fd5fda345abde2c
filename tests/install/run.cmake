# Installs the library into a fresh folder and builds and runs the consumer against it, once with find_package
# and once, where pkg-config and the compiler are native, with pkg-config alone.
# Needs: BUILD_DIR SOURCE_DIR WORK_DIR CXX; optional: TOOLCHAIN EMULATOR PKG_CONFIG CXX_FLAGS
function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${ARGN}\nfailed:\n${output}")
    endif()
endfunction()

file(REMOVE_RECURSE ${WORK_DIR})
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK_DIR}/prefix)

file(GLOB_RECURSE private ${WORK_DIR}/prefix/include/*_internal.h ${WORK_DIR}/prefix/include/zavbase/os/*)
if(private)
    message(FATAL_ERROR "private headers are installed: ${private}")
endif()

set(configure ${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${WORK_DIR}/build -G Ninja -DCMAKE_BUILD_TYPE=Debug
    -DCMAKE_PREFIX_PATH=${WORK_DIR}/prefix -DCMAKE_CXX_FLAGS=${CXX_FLAGS})
if(TOOLCHAIN)
    list(APPEND configure -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN} -DCMAKE_FIND_ROOT_PATH=${WORK_DIR}/prefix)
else()
    list(APPEND configure -DCMAKE_CXX_COMPILER=${CXX})
endif()
run(${configure})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build)
if(EMULATOR)
    # Windows looks for a DLL beside the program.
    file(GLOB dll ${WORK_DIR}/prefix/bin/*.dll)
    file(COPY ${dll} DESTINATION ${WORK_DIR}/build)
    run(${EMULATOR} ${WORK_DIR}/build/consumer.exe)
else()
    run(${WORK_DIR}/build/consumer)
endif()

if(PKG_CONFIG AND NOT TOOLCHAIN)
    file(GLOB_RECURSE pc ${WORK_DIR}/prefix/zavbase.pc)
    get_filename_component(pc_dir "${pc}" DIRECTORY)
    execute_process(COMMAND ${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${pc_dir} ${PKG_CONFIG} --cflags --libs zavbase
                    RESULT_VARIABLE result OUTPUT_VARIABLE flags ERROR_VARIABLE flags)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "pkg-config: ${flags}")
    endif()
    separate_arguments(flags UNIX_COMMAND "${flags}")
    separate_arguments(cxx_flags UNIX_COMMAND "${CXX_FLAGS}")
    file(GLOB_RECURSE lib ${WORK_DIR}/prefix/libzavbase.so)
    get_filename_component(lib_dir "${lib}" DIRECTORY)
    run(${CXX} -std=c++17 ${cxx_flags} ${SOURCE_DIR}/consumer.cpp -o ${WORK_DIR}/plain ${flags} -Wl,-rpath,${lib_dir})
    run(${WORK_DIR}/plain)
endif()
