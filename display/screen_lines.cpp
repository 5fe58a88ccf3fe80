// The line functions that put decoded lines on the screen: they give them to the picture that is being painted.
#include "display/screen_lines.h"

#include "core/library_state.h"
#include "display/loading.h"

namespace vellum {

DWORD showLine(Rotation rotation, ScreenDepth depth, const BYTE *line, LONG row, const ScreenLineContext *context) {
    if (library.screen != nullptr) {
        library.screen->add(rotation, depth, line, row, *context);
    }
    return 0;
}

LineFunc screenLineFunction(Rotation rotation, WORD bitsPerPixel) {
    static constexpr LineFunc kFunctions[][4] = {
        {asLineFunc<FlushMonoLineToScreen>, asLineFunc<FlushMonoRotLineToScreen>,
         asLineFunc<FlushMonoRot18LineToScreen>, asLineFunc<FlushMonoRot27LineToScreen>},
        {asLineFunc<FlushRGBLineToScreen>, asLineFunc<FlushRGBRotLineToScreen>, asLineFunc<FlushRGBRot18LineToScreen>,
         asLineFunc<FlushRGBRot27LineToScreen>},
        {asLineFunc<FlushRGB24LineToScreen>, asLineFunc<FlushRGB24RotLineToScreen>,
         asLineFunc<FlushRGB24Rot18LineToScreen>, asLineFunc<FlushRGB24Rot27LineToScreen>},
    };
    return kFunctions[static_cast<int>(screenDepth(bitsPerPixel))][static_cast<int>(rotation)];
}

} // namespace vellum

using vellum::Rotation;
using vellum::ScreenDepth;
using vellum::showLine;

extern "C" {

DWORD VELLUMAPI FlushMonoLineToScreen(BYTE *line, LONG row, ScreenLineContext *context) {
    return showLine(Rotation::None, ScreenDepth::Mono, line, row, context);
}

DWORD VELLUMAPI FlushMonoRotLineToScreen(BYTE *line, LONG row, ScreenLineContext *context) {
    return showLine(Rotation::By90, ScreenDepth::Mono, line, row, context);
}

DWORD VELLUMAPI FlushMonoRot18LineToScreen(BYTE *line, LONG row, ScreenLineContext *context) {
    return showLine(Rotation::By180, ScreenDepth::Mono, line, row, context);
}

DWORD VELLUMAPI FlushMonoRot27LineToScreen(BYTE *line, LONG row, ScreenLineContext *context) {
    return showLine(Rotation::By270, ScreenDepth::Mono, line, row, context);
}

DWORD VELLUMAPI FlushRGBLineToScreen(BYTE *line, LONG row, ScreenLineContext *context) {
    return showLine(Rotation::None, ScreenDepth::Indexed, line, row, context);
}

DWORD VELLUMAPI FlushRGBRotLineToScreen(BYTE *line, LONG row, ScreenLineContext *context) {
    return showLine(Rotation::By90, ScreenDepth::Indexed, line, row, context);
}

DWORD VELLUMAPI FlushRGBRot18LineToScreen(BYTE *line, LONG row, ScreenLineContext *context) {
    return showLine(Rotation::By180, ScreenDepth::Indexed, line, row, context);
}

DWORD VELLUMAPI FlushRGBRot27LineToScreen(BYTE *line, LONG row, ScreenLineContext *context) {
    return showLine(Rotation::By270, ScreenDepth::Indexed, line, row, context);
}

DWORD VELLUMAPI FlushRGB24LineToScreen(BYTE *line, LONG row, ScreenLineContext *context) {
    return showLine(Rotation::None, ScreenDepth::TrueColor, line, row, context);
}

DWORD VELLUMAPI FlushRGB24RotLineToScreen(BYTE *line, LONG row, ScreenLineContext *context) {
    return showLine(Rotation::By90, ScreenDepth::TrueColor, line, row, context);
}

DWORD VELLUMAPI FlushRGB24Rot18LineToScreen(BYTE *line, LONG row, ScreenLineContext *context) {
    return showLine(Rotation::By180, ScreenDepth::TrueColor, line, row, context);
}

DWORD VELLUMAPI FlushRGB24Rot27LineToScreen(BYTE *line, LONG row, ScreenLineContext *context) {
    return showLine(Rotation::By270, ScreenDepth::TrueColor, line, row, context);
}

} // extern "C"
