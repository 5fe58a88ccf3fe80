// TIFFs opened from their bytes, as a file or from memory, for the tests of the file access core.
#pragma once

#include "support/global_memory.h"
#include "support/paths.h"
#include "support/tiff_builder.h"
#include "vellum32.h"

#include <gtest/gtest.h>

#include <memory>
#include <ostream>

namespace vellum::test {

enum class Place { File, Memory };

// Opens the bytes and closes them again.
class OpenedTiff {
public:
    OpenedTiff(const Bytes &content, Place place, DWORD mode = T_READ) {
        if (place == Place::File) {
            file_ = std::make_unique<TempFile>(content);
            handle_ = OpenTiffFile(file_->path(), mode);
        } else {
            block_ = makeBlock(content);
            handle_ = OpenTiffInMemory(block_, static_cast<DWORD>(content.size()), mode);
        }
    }
    OpenedTiff(const OpenedTiff &) = delete;
    OpenedTiff &operator=(const OpenedTiff &) = delete;
    ~OpenedTiff() {
        CloseTiffFile(handle_);
        GlobalFree(block_);
    }

    [[nodiscard]] TiffHandle get() const { return handle_; }
    explicit operator bool() const { return handle_ != nullptr; }
    [[nodiscard]] const char *path() const { return file_->path(); }
    [[nodiscard]] HGLOBAL block() const { return block_; }

private:
    std::unique_ptr<TempFile> file_;
    HGLOBAL block_ = nullptr;
    TiffHandle handle_ = nullptr;
};

// A TIFF with one directory, its image registered.
class OneImage {
public:
    explicit OneImage(const std::vector<tiff::Entry> &entries, std::uint16_t byteOrder = tiff::kII,
                      Place place = Place::Memory)
        : tiff_(contentOf(entries, byteOrder), place), registered_(GetTiffImage(tiff_.get(), 0) == 1) {}

    [[nodiscard]] TiffHandle get() const { return tiff_.get(); }
    [[nodiscard]] bool registered() const { return registered_; }

private:
    static Bytes contentOf(const std::vector<tiff::Entry> &entries, std::uint16_t byteOrder) {
        tiff::Builder file(byteOrder);
        file.directory(entries);
        return file.bytes();
    }

    OpenedTiff tiff_;
    bool registered_;
};

inline DWORD imageCount(TiffHandle tiff) {
    return static_cast<DWORD>(NumberOfTiffImages(tiff, VELLUM_ALL_IMAGES));
}

// The ways in which the same content can be there: tests that hold for all of them are run four times.
struct Variant {
    std::uint16_t byteOrder;
    Place place;
};

inline void PrintTo(const Variant &variant, std::ostream *out) {
    *out << (variant.byteOrder == tiff::kII ? "II" : "MM") << (variant.place == Place::File ? "File" : "Memory");
}

inline std::string variantName(const ::testing::TestParamInfo<Variant> &info) {
    return ::testing::PrintToString(info.param);
}

inline auto allVariants() {
    return ::testing::Values(Variant{tiff::kII, Place::File}, Variant{tiff::kMM, Place::File},
                             Variant{tiff::kII, Place::Memory}, Variant{tiff::kMM, Place::Memory});
}

} // namespace vellum::test
