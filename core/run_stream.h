// The stream of a coding run: opened on a TIFF for the run alone, closed at its end, a memory TIFF's block stored back.
// The record is looked at before and behind the run only: a line function may close the TIFF.
#pragma once

#include "core/tiff_file.h"

namespace vellum {

class RunStream {
public:
    using Open = StreamHandle (*)(const TiffFileBlock &);
    using StoreBack = void (*)(TiffFileBlock &, StreamHandle);

    RunStream(TiffHandle tiff, Open openStream, StoreBack storeBack)
        : tiff_(tiff), storeBack_(storeBack), stream_(open(tiff, openStream)) {}
    ~RunStream() {
        if (const TiffFileView file(tiff_); file && stream_) {
            storeBack_(*file, stream_.get());
        }
    }
    RunStream(const RunStream &) = delete;
    RunStream &operator=(const RunStream &) = delete;

    explicit operator bool() const { return static_cast<bool>(stream_); }
    [[nodiscard]] StreamHandle get() const { return stream_.get(); }

private:
    static StreamHandle open(TiffHandle tiff, Open openStream) {
        const TiffFileView file(tiff);
        return file ? openStream(*file) : kNoStream;
    }

    TiffHandle tiff_;
    StoreBack storeBack_;
    Stream stream_;
};

} // namespace vellum
