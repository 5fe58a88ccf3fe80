# Makes the module definition files from the one list of exported functions, api/exports.inc.
#   vellum32.def     for the link of the DLL: "Name = Name@8" exports the plain name; a wrong byte count stops the link.
#                    ("Name@8 == Name" would do so too, but ld then sorts the table of names by the decorated ones, and
#                    the loader's binary search misses DllFlushTiffLine, which stands behind DllFlushTiffLine24.)
#   decorated.def    for dlltool and llvm-dlltool: the stdcall names, from which they make the import libraries. The one
#                    that ld makes beside the DLL knows the plain names only and links no program.
set(VELLUM_EXPORTS_LIST ${PROJECT_SOURCE_DIR}/api/exports.inc)
set(VELLUM_DEF ${PROJECT_BINARY_DIR}/exports/vellum32.def)
set(VELLUM_DECORATED_DEF ${PROJECT_BINARY_DIR}/exports/decorated.def)
set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${VELLUM_EXPORTS_LIST})

function(vellum_write_def_files)
    set(entry "^VELLUM_EXPORT\\(([A-Za-z0-9_]+), ([0-9]+)\\)$")
    file(STRINGS ${VELLUM_EXPORTS_LIST} lines REGEX "^[^/]")
    set(plain "LIBRARY VELLUM32.DLL\nEXPORTS\n")
    set(decorated "LIBRARY VELLUM32.DLL\nEXPORTS\n")
    foreach(line IN LISTS lines)
        if(line MATCHES "${entry}")
            string(APPEND plain "    ${CMAKE_MATCH_1} = ${CMAKE_MATCH_1}@${CMAKE_MATCH_2}\n")
            string(APPEND decorated "    ${CMAKE_MATCH_1}@${CMAKE_MATCH_2}\n")
        else()
            message(FATAL_ERROR "api/exports.inc: not an entry: ${line}")
        endif()
    endforeach()
    file(CONFIGURE OUTPUT ${VELLUM_DEF} CONTENT "${plain}" @ONLY)
    file(CONFIGURE OUTPUT ${VELLUM_DECORATED_DEF} CONTENT "${decorated}" @ONLY)
endfunction()
vellum_write_def_files()

# libVELLUM32.dll.a, for MinGW, in place of ld's.
function(vellum_replace_import_library dll)
    if(NOT CMAKE_DLLTOOL)
        message(FATAL_ERROR "dlltool, of the MinGW binutils, was not found")
    endif()
    add_custom_command(
        TARGET ${dll}
        POST_BUILD
        COMMAND ${CMAKE_DLLTOOL} --machine i386 --kill-at --input-def ${VELLUM_DECORATED_DEF} --output-lib
                $<TARGET_LINKER_FILE_NAME:${dll}>
        WORKING_DIRECTORY ${CMAKE_ARCHIVE_OUTPUT_DIRECTORY}
        VERBATIM)
endfunction()

set(VELLUM_MSVC_LIBRARY ${CMAKE_ARCHIVE_OUTPUT_DIRECTORY}/vellum32.lib)

# vellum32.lib, for linkers of the MSVC style, which refuse the library that the GNU tools make.
function(vellum_add_msvc_import_library)
    find_program(VELLUM_DLLTOOL NAMES llvm-dlltool-14 llvm-dlltool)
    if(NOT VELLUM_DLLTOOL)
        message(STATUS "llvm-dlltool not found: vellum32.lib, the MSVC-style import library, is not made")
        return()
    endif()
    add_custom_command(
        OUTPUT ${VELLUM_MSVC_LIBRARY}
        COMMAND ${VELLUM_DLLTOOL} -m i386 -k -d ${VELLUM_DECORATED_DEF} -l ${VELLUM_MSVC_LIBRARY}
        DEPENDS ${VELLUM_DECORATED_DEF}
        COMMENT "Making vellum32.lib")
    add_custom_target(vellum_msvc_import_library ALL DEPENDS ${VELLUM_MSVC_LIBRARY})
endfunction()
