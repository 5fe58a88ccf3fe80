// Loading of a CALS file into a packed DIB of 1 bit per pixel.
#include "cals/cals_dialogs.h"
#include "cals/cals_header.h"
#include "cals/cals_picture.h"
#include "core/message_box.h"
#include "display/loading.h"
#include "support/wait_cursor.h"

#include <cstdint>

namespace vellum {
namespace {

constexpr DWORD kSpareBytes = 100;

DWORD VELLUMAPI countLine(BYTE *, DWORD, DWORD *lines) {
    ++*lines;
    return 0;
}

// Decodes a picture to nowhere: of one that is kept at least a sixteenth must be there.
Error checkLines(const char *path, const CalsPicture &picture) {
    constexpr DWORD kLeastPart = 16;
    const WaitCursor wait;
    DWORD lines = 0;
    const Error error = decodeCals(path, picture, asLineFunc<countLine>, userValueOf(lines));
    if (error != Error::None && !leavesPartOfThePicture(error)) {
        return error;
    }
    return error == Error::None || lines >= picture.height / kLeastPart ? Error::None : Error::NoMemory;
}

// A picture that is denser than any drawing must prove that it is there before it gets its memory; one that is wider
// than any, too, gets none.
Error checkThere(const char *path, const CalsPicture &picture) {
    constexpr std::uint64_t kDensestDrawing = 1000;
    if (const Error error = checkCalsWorth(path, picture); error != Error::None) {
        return error;
    }
    const DWORD bytes = picture.imageBytes().fit().value_or(0);
    if (!picture.needsProof() || bytes <= kDensestDrawing * calsCodeBytes(path).value_or(0)) {
        return Error::None;
    }
    return picture.isWiderThanDrawings() ? Error::NoMemory : checkLines(path, picture);
}

Error decodeInto(BYTE *bits, const char *path, const CalsPicture &picture) {
    const WaitCursor wait;
    CalsLineContext context{bits, picture.height, picture.bytesPerLine(), picture.stride().fit().value_or(0), 0};
    return decodeCals(path, picture, asLineFunc<DllFlushCALSLineDIB>, userValueOf(context));
}

// The DIB stays empty when there is none to decode into.
Error loadInto(GlobalBlock &dib, const char *path, const CalsInfo &info) {
    CalsPicture picture;
    if (const Error error = measureCals(info, picture); error != Error::None) {
        return error;
    }
    if (const Error error = checkThere(path, picture); error != Error::None) {
        return error;
    }
    dib = GlobalBlock::allocate(Size(sizeof(BilevelInfo) + kSpareBytes) + picture.imageBytes());
    const GlobalView<BilevelInfo> view(dib.get());
    if (!view) {
        return Error::NoMemory;
    }
    *view = picture.describe();
    return decodeInto(reinterpret_cast<BYTE *>(view.get() + 1), path, picture);
}

void warn(Error error) {
    tellUser(errorMessage(number(error)), "CALS warning", MB_TASKMODAL | MB_ICONEXCLAMATION);
}

HGLOBAL loadCals(const char *path) {
    CalsInfo info;
    if (!readCalsInfo(path, info)) {
        return nullptr;
    }
    GlobalBlock dib;
    const Error error = loadInto(dib, path, info);
    if (leavesPartOfThePicture(error) && dib) {
        // By design: what there is of a picture is worth having, but whoever sees it is told.
        warn(error);
    } else if (error != Error::None) {
        dib.reset();
    }
    setError(error);
    return dib.release();
}

} // namespace
} // namespace vellum

extern "C" HGLOBAL VELLUMAPI LoadCALSIntoDIB(const char *path, LONG showInfo) {
    if (showInfo != 0) {
        if (const LONG answer = vellum::askCalsInfo(path); answer != vellum::kCalsDialogOk) {
            vellum::setError(vellum::errorOfCalsDialog(answer));
            return nullptr;
        }
    }
    return vellum::loadCals(path);
}
