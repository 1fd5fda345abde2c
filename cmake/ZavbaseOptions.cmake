# zavbase_options: the compiler switches of everything built in this tree.
add_library(zavbase_options INTERFACE)
target_compile_options(zavbase_options INTERFACE -Wall -Wextra -Wconversion
                       $<$<BOOL:${ZAVBASE_WARNINGS_AS_ERRORS}>:-Werror>)
# One floating-point behaviour on all platforms: no x87 registers, no fused operations.
target_compile_options(zavbase_options INTERFACE -ffp-contract=off)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "i[3-6]86")
    target_compile_options(zavbase_options INTERFACE -msse2 -mfpmath=sse -mstackrealign)
endif()

if(ZAVBASE_SANITIZE)
    set(flags -fsanitize=${ZAVBASE_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_compile_options(${flags})
    add_link_options(${flags})
endif()

if(MINGW)
    # Exceptions cross module boundaries: one copy of the run-time libraries for the whole process.
    target_link_options(zavbase_options INTERFACE -shared-libgcc)
    target_compile_definitions(zavbase_options INTERFACE __USE_MINGW_ANSI_STDIO=0)
endif()

# What a program needs beside the static library.
if(WIN32)
    set(ZAVBASE_SYSTEM_LIBRARIES user32)
    if(CMAKE_SIZEOF_VOID_P EQUAL 4)
        set(ZAVBASE_STATIC_LINK -Wl,-u,_zavbase_static_entry)
    else()
        set(ZAVBASE_STATIC_LINK -Wl,-u,zavbase_static_entry)
    endif()
else()
    set(ZAVBASE_SYSTEM_LIBRARIES pthread ${CMAKE_DL_LIBS})
    set(ZAVBASE_STATIC_LINK -Wl,-u,zavbase_static_entry)
endif()

# zavbase_version_resource(TARGET DESCRIPTION): what Windows shows of a program or DLL under "Details".
function(zavbase_version_resource target description)
    if(NOT WIN32)
        return()
    endif()
    enable_language(RC)
    get_target_property(type ${target} TYPE)
    if(type STREQUAL EXECUTABLE)
        set(file_type VFT_APP)
        set(file ${target}.exe)
    elseif(type STREQUAL SHARED_LIBRARY)
        set(file_type VFT_DLL)
        set(file ${target}.dll)
    else()
        return()
    endif()
    configure_file(${PROJECT_SOURCE_DIR}/zavbase/os/win32/version.rc.in
                   ${CMAKE_CURRENT_BINARY_DIR}/${target}_version.rc @ONLY)
    target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${target}_version.rc)
endfunction()

# zavbase_module(NAME) and zavbase_module_host(NAME): a module and a program that loads it use the one library of
# the process. The static one is in the host, whole, and the module finds it there; Windows has no such thing.
function(zavbase_module name)
    target_link_libraries(${name} PRIVATE zavbase_options)
    if(ZAVBASE_IS_STATIC)
        target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
    else()
        target_link_libraries(${name} PRIVATE zavbase::zavbase)
    endif()
endfunction()

function(zavbase_module_host name)
    if(ZAVBASE_IS_STATIC)
        set_target_properties(${name} PROPERTIES ENABLE_EXPORTS ON)
        target_link_options(${name} PRIVATE -Wl,--whole-archive $<TARGET_FILE:zavbase> -Wl,--no-whole-archive)
    endif()
endfunction()
