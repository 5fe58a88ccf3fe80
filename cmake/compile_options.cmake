# How the project's own code is compiled: the language, the arithmetic, the warnings and the sanitizers, as interface
# libraries that every target links.
option(VELLUM_SANITIZE "Native builds: address and undefined-behaviour sanitizers" OFF)
option(VELLUM_FUZZ "Native builds: instrument the library for libFuzzer" OFF)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 17)
set(CMAKE_C_FLAGS_RELEASE "-O2")
set(CMAKE_CXX_FLAGS_RELEASE "-O2")

# What all code gets, GoogleTest included. x87 arithmetic truncates differently: 300 * 39.37 would give 11810 instead
# of 11811.
add_library(vellum_platform INTERFACE)
target_compile_options(vellum_platform INTERFACE -msse2 -mfpmath=sse)
if(WIN32)
    target_compile_definitions(vellum_platform INTERFACE WIN32_LEAN_AND_MEAN NOMINMAX STRICT)
    target_link_options(vellum_platform INTERFACE -static)
else()
    target_compile_definitions(vellum_platform INTERFACE VELLUM_NATIVE)
    if(VELLUM_SANITIZE)
        set(sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all)
        target_compile_options(vellum_platform INTERFACE ${sanitizers} -fno-omit-frame-pointer -g1)
        target_link_options(vellum_platform INTERFACE ${sanitizers})
    endif()
    if(VELLUM_FUZZ)
        target_compile_options(vellum_platform INTERFACE -fsanitize=fuzzer-no-link)
        target_link_options(vellum_platform INTERFACE -fsanitize=fuzzer-no-link)
    endif()
endif()

# The project's own code: every warning is an error.
add_library(vellum_options INTERFACE)
target_link_libraries(vellum_options INTERFACE vellum_platform)
target_include_directories(vellum_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(
    vellum_options
    INTERFACE $<$<COMPILE_LANGUAGE:C,CXX>:-Wall;-Wextra;-Wpedantic;-Wconversion;-Wshadow;-Werror>)
if(WIN32)
    # Two builds of the same sources give the same bytes wherever they lie: no path of the checkout, no time stamp, and
    # no image base made from the output path.
    target_compile_options(
        vellum_options INTERFACE $<$<COMPILE_LANGUAGE:C,CXX>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>)
    target_link_options(vellum_options INTERFACE -Wl,--no-insert-timestamp -Wl,--image-base,0x10000000)
endif()

find_program(VELLUM_CCACHE ccache)
if(VELLUM_CCACHE)
    set(CMAKE_C_COMPILER_LAUNCHER ${VELLUM_CCACHE})
    set(CMAKE_CXX_COMPILER_LAUNCHER ${VELLUM_CCACHE})
endif()
