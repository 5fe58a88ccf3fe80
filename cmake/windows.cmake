# What is shipped: VELLUM32.DLL, its import libraries, and the command-line program.
enable_language(RC)
include(cmake/exports.cmake)

set_source_files_properties(res/vellum.rc PROPERTIES OBJECT_DEPENDS ${PROJECT_SOURCE_DIR}/res/resource.h)
add_library(vellum SHARED res/vellum.rc ${VELLUM_DEF})
target_link_libraries(vellum PRIVATE vellum_objects INTERFACE vellum_header)
set_target_properties(
    vellum
    PROPERTIES OUTPUT_NAME VELLUM32
               PREFIX ""
               SUFFIX .DLL
               IMPORT_PREFIX lib
               IMPORT_SUFFIX .dll.a
               LINKER_LANGUAGE CXX)
vellum_replace_import_library(vellum)
vellum_add_msvc_import_library()

if(VELLUM_TESTS)
    # Test programs have the DLL beside them.
    add_custom_command(
        TARGET vellum
        POST_BUILD
        COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/tests
        COMMAND ${CMAKE_COMMAND} -E copy_if_different $<TARGET_FILE:vellum> ${PROJECT_BINARY_DIR}/tests)
endif()

file(GLOB VELLUM_TOOL_SOURCES CONFIGURE_DEPENDS tools/*.cpp)
if(VELLUM_TOOL_SOURCES)
    add_executable(vellum_tool ${VELLUM_TOOL_SOURCES})
    target_link_libraries(vellum_tool PRIVATE vellum_options vellum)
    set_target_properties(vellum_tool PROPERTIES OUTPUT_NAME vellum)
endif()

# The examples of the documentation, so that they compile and run.
foreach(
    example IN
    ITEMS load_page
          black_pixels
          save_page
          modca_page
          cals_notes
          fax_text
          note_and_stamp)
    add_executable(example_${example} examples/${example}.c)
    target_link_libraries(example_${example} PRIVATE vellum_options vellum gdi32)
endforeach()

# And one that is a program: a viewer.
file(GLOB VELLUM_VIEWER_SOURCES CONFIGURE_DEPENDS examples/viewer/*.c)
set_source_files_properties(examples/viewer/viewer.rc PROPERTIES OBJECT_DEPENDS
                                                                 ${PROJECT_SOURCE_DIR}/examples/viewer/resource.h)
add_executable(viewer WIN32 ${VELLUM_VIEWER_SOURCES} examples/viewer/viewer.rc)
target_link_libraries(viewer PRIVATE vellum_options vellum comdlg32 shell32 gdi32)
