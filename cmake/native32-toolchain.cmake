# 32-bit Linux programs with Clang, for the sanitizers, the fuzzers and native measurements.
find_program(VELLUM_NATIVE_CC NAMES clang-14 clang REQUIRED)
find_program(VELLUM_NATIVE_CXX NAMES clang++-14 clang++ REQUIRED)
set(CMAKE_C_COMPILER ${VELLUM_NATIVE_CC})
set(CMAKE_CXX_COMPILER ${VELLUM_NATIVE_CXX})
set(CMAKE_C_FLAGS_INIT "-m32")
set(CMAKE_CXX_FLAGS_INIT "-m32")
