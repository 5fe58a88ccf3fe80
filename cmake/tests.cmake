# Makes test programs out of a folder's files, by their names:
#   NAME_test.cpp          <folder>_tests: linked with the library's objects, so that it sees the inner parts too
#   NAME_api_test.cpp      the public interface alone. On Windows these become <folder>_dll_tests, linked with nothing
#                          but the DLL; natively they join <folder>_tests, so that the sanitizers see them as well
#   NAME_gdi_test.cpp, NAME_gdi_api_test.cpp,
#   NAME_windows_test.cpp, NAME_windows_api_test.cpp
#                          Windows only: GDI, dialogs, the clipboard; modules and the loader
#   NAME_native_test.cpp   native only
#   any other NAME.cpp     joins every program of the folder
set(VELLUM_TEST_PREFIX "native.")
if(WIN32)
    set(VELLUM_TEST_PREFIX "win32.")
elseif(VELLUM_SANITIZE)
    set(VELLUM_TEST_PREFIX "asan.")
endif()

function(vellum_add_test_folder folder)
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp)
    set(tests ${sources})
    list(FILTER tests INCLUDE REGEX "_test\\.cpp$")
    set(shared ${sources})
    list(FILTER shared EXCLUDE REGEX "_(test|fuzz)\\.cpp$")
    if(folder MATCHES "^(support|native)$")
        set(shared "") # they are libraries of their own
    endif()
    set(api ${tests})
    list(FILTER api INCLUDE REGEX "_api_test\\.cpp$")
    set(inner ${tests})
    if(WIN32)
        list(FILTER inner EXCLUDE REGEX "_(api|native)_test\\.cpp$")
        vellum_add_test_program(${folder}_dll_tests vellum "${shared}" "${api}")
    else()
        list(FILTER inner EXCLUDE REGEX "_(gdi|windows)(_api)?_test\\.cpp$")
    endif()
    vellum_add_test_program(${folder}_tests vellum_objects "${shared}" "${inner}")
endfunction()

# One program and one ctest test; nothing when there are no test files.
function(vellum_add_test_program name library shared tests)
    if(NOT tests)
        return()
    endif()
    add_executable(${name} ${shared} ${tests})
    target_link_libraries(${name} PRIVATE ${library} vellum_test_support)
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tests)
    vellum_add_test(${name} COMMAND ${name} --gtest_brief=1)
endfunction()

# NAME_fuzz.cpp of a folder: libFuzzer programs, in builds with VELLUM_FUZZ.
function(vellum_add_fuzzers folder)
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*_fuzz.cpp)
    foreach(source IN LISTS sources)
        get_filename_component(name ${source} NAME_WE)
        add_executable(${name} ${source})
        target_link_libraries(${name} PRIVATE vellum_objects)
        target_include_directories(${name} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
        target_link_options(${name} PRIVATE -fsanitize=fuzzer)
        set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/fuzz)
    endforeach()
endfunction()

# add_test with what all tests share: they run in the checkout's folder. Windows programs find Wine's server started.
function(vellum_add_test name)
    set(test ${VELLUM_TEST_PREFIX}${name})
    add_test(NAME ${test} ${ARGN})
    set_tests_properties(${test} PROPERTIES TIMEOUT 600 WORKING_DIRECTORY ${PROJECT_SOURCE_DIR})
    if(WIN32 AND CMAKE_CROSSCOMPILING)
        set_tests_properties(${test} PROPERTIES FIXTURES_REQUIRED wine)
    endif()
endfunction()
