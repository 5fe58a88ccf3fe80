// Saving of a packed DIB of 1 bit per pixel as a CALS file.
#include "cals/cals_dialogs.h"
#include "cals/cals_header.h"
#include "codec/encode_driver.h"
#include "core/image_dimensions.h"
#include "core/stream.h"
#include "support/dib_view.h"
#include "support/numeric.h"
#include "support/wait_cursor.h"
#include "write/fill_lines.h"
#include "write/save_tags.h"

namespace vellum {
namespace {

struct SaveRequest {
    const char *path;
    HGLOBAL dib;
    const CalsNotes *notes;
    const LONG *orientation;
    bool showEdit;
};

CalsInfo infoOf(const DibView &dib, const LONG *orientation) {
    CalsInfo info{};
    info.rtype = 1;
    // By design: the angles that are written when nobody asks for others.
    info.rorient[0] = orientation != nullptr ? orientation[0] : 90;
    info.rorient[1] = orientation != nullptr ? orientation[1] : 270;
    info.rpelcnt[0] = dib.header().biWidth;
    info.rpelcnt[1] = dib.header().biHeight;
    info.rdensty = truncateToLong(dib.header().biXPelsPerMeter * kMetersPerInch + 0.5);
    return info;
}

RawImage rawImage(const DibView &dib, StreamHandle stream, DWORD userValue) {
    return {stream, dib.width(),          dib.height(), VELLUM_KEY_GROUP4,
            1,      VELLUM_BYTE_ORDER_II, userValue,    asLineFunc<DllFillCALSLineDIB>};
}

// Whether there is code for the picture, asked before its file is touched.
Error checkPicture(const DibView &dib) {
    const bool bilevel =
        dib.header().biSize == sizeof(BITMAPINFOHEADER) && dib.bitsPerPixel() == 1 && dib.colourCount() == 2;
    if (!bilevel) {
        return Error::BadColorFormat;
    }
    CodecState state{};
    if (const Error error = setUpRawRun(state, rawImage(dib, kNoStream, 0)); error != Error::None) {
        return error;
    }
    return checkEncodable(state);
}

Error encode(const DibView &dib, StreamHandle stream) {
    const WaitCursor wait;
    CalsLineContext context{dib.bits(), dib.height(), lineBytes(dib.width(), 1).fit().value_or(0), dib.stride(),
                            isBlack(dib.colours()[0]) ? 1u : 0u};
    return encodeRawImage(rawImage(dib, stream, userValueOf(context)));
}

Error writeFile(const char *path, const char *header, const DibView &dib) {
    const Stream file(openFileStream(path, kOpenCreate));
    if (!file) {
        return Error::Io;
    }
    const LONG written = writeStream(file.get(), reinterpret_cast<const BYTE *>(header), VELLUM_CALS_HEADER);
    return written == VELLUM_CALS_HEADER ? encode(dib, file.get()) : Error::Io;
}

DWORD saveCals(const SaveRequest &request) {
    const DibView dib(request.dib);
    if (!dib) {
        return failed(dib.locked() ? Error::BadColorFormat : Error::NoMemory);
    }
    if (const Error error = checkPicture(dib); error != Error::None) {
        return failed(error);
    }
    const CalsNotes none{};
    const GlobalBlock block =
        defineCalsHead(infoOf(dib, request.orientation), request.notes != nullptr ? *request.notes : none);
    const GlobalView<char> header(block.get(), VELLUM_CALS_BLOCK);
    if (!header) {
        return failed(Error::NoMemory);
    }
    if (request.showEdit) {
        if (const LONG answer = askCalsTexts(request.path, header.get()); answer != kCalsDialogOk) {
            setError(errorOfCalsDialog(answer));
            // By design: who cancels has got what he wants.
            return answer == kCalsDialogCancelled ? 1 : 0;
        }
    }
    return recorded(writeFile(request.path, header.get(), dib));
}

} // namespace
} // namespace vellum

extern "C" DWORD VELLUMAPI SaveDIBInCALSFormat(const char *path, HGLOBAL dib, const CalsNotes *notes,
                                               const LONG *orientation, LONG showEdit) {
    return vellum::saveCals({path, dib, notes, orientation, showEdit != 0});
}
