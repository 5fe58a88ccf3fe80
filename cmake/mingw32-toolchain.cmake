# 32-bit Windows programs with MinGW-w64. On Windows the compilers on the PATH are taken (they must be i686 ones);
# elsewhere the cross compilers with POSIX threads, because the others have no std::mutex.
if(CMAKE_HOST_WIN32)
    return()
endif()

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86)
foreach(flavour "-posix" "")
    if(NOT CMAKE_CXX_COMPILER)
        find_program(VELLUM_MINGW_CC i686-w64-mingw32-gcc${flavour})
        find_program(VELLUM_MINGW_CXX i686-w64-mingw32-g++${flavour})
        if(VELLUM_MINGW_CC AND VELLUM_MINGW_CXX)
            set(CMAKE_C_COMPILER ${VELLUM_MINGW_CC})
            set(CMAKE_CXX_COMPILER ${VELLUM_MINGW_CXX})
        endif()
    endif()
endforeach()
set(CMAKE_RC_COMPILER i686-w64-mingw32-windres)

set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH /usr/i686-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Windows programs run through the launcher, which finds or makes a Wine for 32-bit programs.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine)
