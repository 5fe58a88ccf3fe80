# The library's sources, folder by folder. A new file in one of these folders needs no change here; one that draws,
# shows dialogs or uses the clipboard is added to VELLUM_GDI_SOURCES.
set(VELLUM_FOLDERS support core codec display write cals annot api)
set(VELLUM_GDI_SOURCES
    annot/fax_page.cpp
    annot/overlay.cpp
    annot/text_drawing.cpp
    cals/cals_dialogs.cpp
    cals/edit_dialog.cpp
    cals/info_dialog.cpp
    cals/paint_cals.cpp
    display/bitmap_lines.cpp
    display/clipboard.cpp
    display/dib_bitmap.cpp
    display/info_dialog.cpp
    display/load_bitmap.cpp
    display/paint_tiff.cpp
    display/palette.cpp
    display/screen_band.cpp
    display/screen_lines.cpp
    display/screen_painter.cpp
    display/screen_window.cpp
    write/fill_bitmap_lines.cpp
    write/save_bitmap.cpp
    write/save_dialog.cpp)

set(VELLUM_SOURCES)
foreach(folder IN LISTS VELLUM_FOLDERS)
    file(GLOB sources CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/${folder}/*.cpp)
    list(APPEND VELLUM_SOURCES ${sources})
endforeach()
if(NOT WIN32)
    list(REMOVE_ITEM VELLUM_SOURCES ${VELLUM_GDI_SOURCES})
endif()
