# 32-bit Linux programs with GCC, the native counterpart of the MinGW builds: the same compiler family on both sides of
# every comparison.
set(CMAKE_C_COMPILER gcc)
set(CMAKE_CXX_COMPILER g++)
# Windows code is not position-independent, which costs 32-bit code dearly; so neither is this.
set(CMAKE_C_FLAGS_INIT "-m32 -fno-pie")
set(CMAKE_CXX_FLAGS_INIT "-m32 -fno-pie")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-no-pie")
set(CMAKE_LIBRARY_PATH /usr/lib32) # where the 32-bit libm is looked for
