# zavbase_options: the compiler switches of everything built in this tree.
add_library(zavbase_options INTERFACE)
target_compile_options(zavbase_options INTERFACE -Wall -Wextra -Wconversion -Werror)
# The fuzz targets need clang, which warns of other things; g++ is what the tree is kept clean for.
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    target_compile_options(zavbase_options INTERFACE -Wno-error)
endif()
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
    add_link_options(-shared-libgcc)
    add_compile_definitions(__USE_MINGW_ANSI_STDIO=0)
endif()
