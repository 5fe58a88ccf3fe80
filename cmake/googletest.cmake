# GoogleTest from the sources that Debian ships (package googletest), or from VELLUM_GOOGLETEST_DIR: compiled once a
# build folder with this build's compiler and flags.
if(NOT EXISTS ${VELLUM_GOOGLETEST_DIR}/googletest/src/gtest-all.cc)
    message(FATAL_ERROR "The tests need GoogleTest's sources, which are not in ${VELLUM_GOOGLETEST_DIR}")
endif()

add_library(googletest STATIC ${VELLUM_GOOGLETEST_DIR}/googletest/src/gtest-all.cc
                              ${VELLUM_GOOGLETEST_DIR}/googlemock/src/gmock-all.cc)
target_include_directories(googletest SYSTEM PUBLIC ${VELLUM_GOOGLETEST_DIR}/googletest/include
                                                    ${VELLUM_GOOGLETEST_DIR}/googlemock/include)
target_include_directories(googletest SYSTEM PRIVATE ${VELLUM_GOOGLETEST_DIR}/googletest
                                                     ${VELLUM_GOOGLETEST_DIR}/googlemock)
target_link_libraries(googletest PUBLIC vellum_platform)
target_compile_options(googletest PRIVATE -w)
if(NOT WIN32)
    find_package(Threads REQUIRED)
    target_link_libraries(googletest PUBLIC Threads::Threads)
endif()
