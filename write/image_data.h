// Where an image's data lie in its file: the pieces that its tags point to, strips, tiles and the coding tables of JPEG
// images, which are copied as they are when the image goes into another file.
#pragma once

#include "core/image_directory.h"
#include "core/image_info.h"

namespace vellum {

class ImageData {
public:
    // Finds the data of a registered image in the stream that it was loaded from. Errors: 1; 4 when offsets and byte
    // counts do not go together; 6 when a piece does not lie in the stream, or all of them are out of proportion to it;
    // 10 when the image has no data or half of what tells where they are.
    Error find(TiffHandle tiff, DWORD index, StreamHandle source);

    // Defines the image's offsets for data behind a directory (with its values) that begins at this place of a file.
    // Offsets keep their type; SHORTs become LONGs where they must. Errors: 1, 6.
    Error place(TiffHandle tiff, DWORD index, DWORD directoryOffset);

    // Copies all pieces one behind the other to a stream's position. Error: 1, 6.
    [[nodiscard]] Error copy(StreamHandle source, StreamHandle target) const;

private:
    struct Piece {
        DWORD offset;
        DWORD bytes;
    };
    // The pieces that one tag points to.
    struct Group {
        Tag tag;
        Tag byteCounts; // the tag with their sizes; for coding tables, which tell it themselves, the tag itself
        DWORD type;     // SHORT or LONG
        DWORD first;    // in the list of pieces
        DWORD count;
        DWORD at;     // of the first one, behind the start of the data
        DWORD lastAt; // of the last one
    };
    static constexpr DWORD kMostGroups = 6;
    // The stream that the pieces lie in.
    struct Source {
        StreamHandle stream;
        DWORD bytes;
        std::uint64_t most; // that all pieces may have
    };

    Error listGroups(TiffHandle tiff, DWORD index);
    Error addPair(TiffHandle tiff, DWORD index, Tag offsets, Tag byteCounts);
    Error addTables(TiffHandle tiff, DWORD index, Tag tag);
    Error addGroup(Tag tag, Tag byteCounts, const TagShape &shape);
    Error findPieces(TiffHandle tiff, DWORD index, StreamHandle source);
    Error findGroup(Group &group, const ImageDirectory &directory, const Source &source, Piece *pieces);
    static Error measureTable(Tag tag, StreamHandle source, Piece &piece);
    Error reserveOffsets(TiffHandle tiff, DWORD index, DWORD &directoryBytes) const;
    Error defineAllOffsets(TiffHandle tiff, DWORD index, DWORD dataStart) const;
    Error defineOffsets(TiffHandle tiff, DWORD index, const Group &group, DWORD dataStart) const;
    bool widen(DWORD dataStart);

    Group groups_[kMostGroups] = {};
    DWORD groupCount_ = 0;
    DWORD pieceCount_ = 0;
    DWORD totalBytes_ = 0;
    GlobalBlock pieces_;
};

} // namespace vellum
