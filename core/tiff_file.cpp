// How the record of an open TIFF leads to its bytes.
#include "core/tiff_file.h"

namespace vellum {

StreamHandle openForReading(const TiffFileBlock &file) {
    return file.pathName[0] != '\0' ? openFileStream(file.pathName, kOpenRead)
                                    : openMemoryStream(file.memHandle, file.memSize);
}

void storeBackMemoryBlock(TiffFileBlock &file, StreamHandle stream) {
    if (file.pathName[0] == '\0') {
        file.memHandle = memoryStreamBlock(stream);
    }
}

void storeBackMemoryTiff(TiffFileBlock &file, StreamHandle stream) {
    if (memoryStreamBlock(stream) != nullptr) {
        storeBackMemoryBlock(file, stream);
        file.memSize = static_cast<DWORD>(sizeOfStream(stream));
    }
}

} // namespace vellum
