// Any bytes as a CALS file: its header read in every way, its picture loaded, saved and loaded again. For the fuzzer,
// and for inputs that are kept or made.
#pragma once

#include "vellum32.h"

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>

namespace vellum::test {

// A block that the library made, freed with the object.
class MadeBlock {
public:
    explicit MadeBlock(HGLOBAL block) : block_(block) {
        if (block != nullptr) {
            bytes_ = static_cast<const char *>(GlobalLock(block));
            size_ = GlobalSize(block);
        }
    }
    MadeBlock(const MadeBlock &) = delete;
    MadeBlock &operator=(const MadeBlock &) = delete;
    ~MadeBlock() {
        if (block_ != nullptr) {
            GlobalUnlock(block_);
            GlobalFree(block_);
        }
    }

    explicit operator bool() const { return block_ != nullptr; }
    [[nodiscard]] HGLOBAL get() const { return block_; }
    [[nodiscard]] const char *bytes() const { return bytes_; }
    [[nodiscard]] std::size_t size() const { return size_; }
    // Whether a string begins and ends in it.
    [[nodiscard]] bool holds(const char *string) const {
        const auto at = reinterpret_cast<std::uintptr_t>(string) - reinterpret_cast<std::uintptr_t>(bytes_);
        return at < size_ && std::memchr(string, '\0', size_ - at) != nullptr;
    }

private:
    HGLOBAL block_;
    const char *bytes_ = nullptr;
    std::size_t size_ = 0;
};

inline bool isOneOf(DWORD error, std::initializer_list<DWORD> errors) {
    for (const DWORD one : errors) {
        if (error == one) {
            return true;
        }
    }
    return false;
}

// What is wrong with the header's texts.
inline const char *complaintAboutCalsTexts(const char *path) {
    CalsNotes notes = {};
    const MadeBlock texts(ReadCALSNote(path, &notes));
    const char *before = nullptr;
    for (const char *text :
         {notes.srcdocid, notes.dstdocis, notes.txtfileid, notes.figid, notes.scrgph, notes.doccls, notes.notes}) {
        if (text == nullptr) {
            continue;
        }
        if (!texts || !texts.holds(text)) {
            return "a text lies outside its block";
        }
        if (before != nullptr && std::strlen(before) <= std::strlen(text)) {
            return "a text does not read on through the one behind it";
        }
        before = text;
    }
    return nullptr;
}

// What is wrong with the header. Files that are none have no header, and no numbers.
inline const char *complaintAboutCalsHeader(const char *path, CalsInfo &info) {
    SetTiffError(VELLUM_OK);
    const MadeBlock header(ReadCALSHead(path));
    const DWORD error = TiffError();
    const bool numbers = ReadCALSInfo(path, &info) == 1;
    if (!header) {
        return error == VELLUM_NOT_CALS && !numbers ? nullptr : "no header, with another error than 18";
    }
    if (error != VELLUM_OK || header.size() != VELLUM_CALS_BLOCK) {
        return "a header with an error, or of another size";
    }
    for (std::size_t end = VELLUM_CALS_RECORD; end <= VELLUM_CALS_HEADER; end += VELLUM_CALS_RECORD) {
        if (const char last = header.bytes()[end - 1]; last != ' ' && last != '\0') {
            return "a record without a blank at its end";
        }
    }
    if (numbers ? info.rtype != 1 || info.rpelcnt[0] == 0 || info.rpelcnt[1] == 0 : TiffError() != VELLUM_NOT_CALS) {
        return "numbers of no picture, or another error than 18";
    }
    return complaintAboutCalsTexts(path);
}

// Whether loading means memory for a picture that the header claims, be it there or not. Such files are slow.
inline bool isClaimedLarge(const CalsInfo &info) {
    const double pixels = static_cast<double>(info.rpelcnt[0]) * static_cast<double>(info.rpelcnt[1]);
    return pixels > 8e6 && pixels < 8.0 * (80 << 20);
}

// What is wrong with the picture that the file loads into; null also for none.
inline const char *complaintAboutCalsPicture(const char *path, const std::string &copyPath) {
    const MadeBlock dib(LoadCALSIntoDIB(path, 0));
    const DWORD error = TiffError();
    if (!dib) {
        return isOneOf(error, {VELLUM_NO_MEMORY, VELLUM_CODE_ERROR, VELLUM_NOT_CALS}) ? nullptr
                                                                                      : "no picture, with an odd error";
    }
    if (!isOneOf(error, {VELLUM_OK, VELLUM_UNEXPECTED_END, VELLUM_EOFB_MISSING, VELLUM_EOFB_UNEXPECTED})) {
        return "a picture with an odd error";
    }
    BITMAPINFOHEADER header;
    std::memcpy(&header, dib.bytes(), sizeof header);
    const std::size_t stride = (static_cast<std::size_t>(header.biWidth) + 31) / 32 * 4;
    const std::size_t picture = sizeof header + 8 + stride * static_cast<std::size_t>(header.biHeight);
    if (dib.size() < picture) {
        return "a picture that its block does not hold";
    }
    if (copyPath.empty() || header.biWidth > 33280) {
        return nullptr;
    }
    if (SaveDIBInCALSFormat(copyPath.c_str(), dib.get(), nullptr, nullptr, 0) != 1) {
        return "the picture cannot be saved";
    }
    const MadeBlock again(LoadCALSIntoDIB(copyPath.c_str(), 0));
    const std::size_t rows = sizeof header + 8;
    return again && TiffError() == VELLUM_OK && again.size() >= picture &&
                   std::memcmp(again.bytes() + rows, dib.bytes() + rows, picture - rows) == 0
               ? nullptr
               : "the saved picture is another one";
}

// What is wrong with what the library makes of a file; null when nothing is.
//   copyPath  where the picture is saved; empty to leave that out
inline const char *complaintAboutCalsFile(const char *path, const std::string &copyPath) {
    CalsInfo info = {};
    if (const char *complaint = complaintAboutCalsHeader(path, info); complaint != nullptr) {
        return complaint;
    }
    return isClaimedLarge(info) ? nullptr : complaintAboutCalsPicture(path, copyPath);
}

} // namespace vellum::test
