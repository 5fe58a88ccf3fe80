// Writes TIFFs with the library for other readers to judge: a file for every compression, depth, fill order, layout and
// width, and beside each an uncompressed one with the same pixels that this program put together itself; raw code
// streams; a file of a hundred pages saved one after the other; and copies and edited copies of such files.
//   write_for_judges FOLDER
// LIST in the folder names the pairs: file, reference.
#include "support/encode_lines.h"
#include "support/random_pictures.h"
#include "support/tiff_builder.h"
#include "write/packed_dibs.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string_view>
#include <utility>

namespace {

using namespace vellum::test;

struct Format {
    const char *name;
    DWORD compression;
    DWORD option; // T4Options or Predictor
    bool bilevelOnly;
};
constexpr Format kFormats[] = {
    {"none", 1, 0, false},      {"packbits", 32773, 0, false},
    {"lzw", 5, 1, false},       {"lzw-diff", 5, 2, false},
    {"mh", 2, 0, true},         {"g3", 3, 0, true},
    {"g3-fill", 3, 4, true},    {"g3-2d", 3, 1, true},
    {"g3-2d-fill", 3, 5, true}, {"g4", 4, 0, true},
};

struct Depth {
    const char *name;
    DWORD bits;
    DWORD photometric;
};
constexpr Depth kDepths[] = {{"bw", 1, 0}, {"grey4", 4, 1}, {"grey8", 8, 1}, {"palette8", 8, 3}, {"rgb", 24, 2}};
constexpr DWORD kWidths[] = {1, 7, 33, 131, 1728};
constexpr DWORD kHeight = 23;
constexpr DWORD kLayouts[] = {kHeight, 7, 1}; // rows a strip

struct Picture {
    DWORD width;
    DWORD height;
    const Depth *depth;
    Bytes lines;

    [[nodiscard]] DWORD lineBytes() const { return (width * depth->bits + 7) / 8; }
};

void addRow(Picture &picture, const Row &row) {
    Bytes line(picture.lineBytes());
    for (std::size_t x = 0; x < row.size(); ++x) {
        if (row[x]) {
            line[x / 8] = static_cast<BYTE>(line[x / 8] | 0x80 >> (x % 8));
        }
    }
    picture.lines.insert(picture.lines.end(), line.begin(), line.end());
}

Picture makePicture(DWORD width, DWORD height, const Depth &depth, std::uint32_t seed) {
    Random random(seed);
    Picture picture{width, height, &depth, {}};
    if (depth.bits == 1) {
        // Without the finest patterns: libtiff has room for as many runs in a line as pixels, not for one more.
        for (DWORD y = 0; y < height; ++y) {
            addRow(picture, randomRow(random, width, 3 + random.below(1 + width / 5)));
        }
        return picture;
    }
    const auto bytes = randomBytes(random, std::size_t{picture.lineBytes()} * height);
    picture.lines.assign(bytes.begin(), bytes.end());
    if (depth.bits == 4 && width % 2 != 0) {
        for (std::size_t line = 1; line <= height; ++line) {
            BYTE &last = picture.lines[line * picture.lineBytes() - 1];
            last = static_cast<BYTE>(last & 0xF0);
        }
    }
    return picture;
}

std::vector<DWORD> colorMap() {
    std::vector<DWORD> map;
    for (DWORD i = 0; i < 768; ++i) {
        map.push_back(i * 85 % 65536);
    }
    return map;
}

// Must not fail: what is judged would be missing.
void need(bool done, const char *what) {
    if (!done) {
        std::fprintf(stderr, "%s failed with error %lu\n", what, TiffError());
        std::exit(1);
    }
}

std::vector<TagValue> tagsOf(const Picture &picture, const Format &format, DWORD rows, DWORD fillOrder) {
    auto tags = pictureTags(picture.width, picture.height, picture.depth->bits, rows,
                            {{259, 3, {format.compression}},
                             {262, 3, {picture.depth->photometric}},
                             {266, 3, {fillOrder}},
                             {282, 5, {204, 1}},
                             {283, 5, {196, 1}},
                             {296, 3, {2}},
                             {284, 3, {1}},
                             {277, 3, {picture.depth->bits == 24 ? 3U : 1U}},
                             {305, 2, {'V', 'E', 'L', 'L', 'U', 'M', 0}}});
    if (format.option != 0) {
        tags.push_back(format.compression == 3 ? TagValue{292, 4, {format.option}} : TagValue{317, 3, {format.option}});
    }
    if (picture.depth->photometric == 3) {
        tags.push_back({320, 3, colorMap()});
    }
    return tags;
}

void addPage(const std::string &path, DWORD mode, LONG byteOrder, const Picture &picture, const Format &format,
             DWORD rows, DWORD fillOrder) {
    const WrittenTiff tiff(path.c_str(), mode);
    need(tiff.get() != nullptr, path.c_str());
    if (byteOrder != 0) {
        ModiTiffFileInfo(tiff.get(), nullptr, byteOrder);
    }
    LineSource source;
    source.lineBytes = picture.lineBytes();
    source.data = picture.lines;
    need(tiff.add(tagsOf(picture, format, rows, fillOrder), source) == 1, path.c_str());
}

// Dots per inch, in both directions.
void addResolution(std::vector<tiff::Entry> &entries, DWORD dotsPerInch) {
    entries.push_back(tiff::rationals(282, {dotsPerInch, 1}));
    entries.push_back(tiff::rationals(283, {dotsPerInch, 1}));
    entries.push_back(tiff::shorts(296, {2}));
}

// dotsPerInch: 0 for none.
tiff::Bytes referenceOf(const Picture &picture, DWORD pages = 1, DWORD dotsPerInch = 0) {
    tiff::Builder file;
    for (DWORD page = 0; page < pages; ++page) {
        const bool rgb = picture.depth->bits == 24;
        std::vector<tiff::Entry> entries = {
            tiff::longs(256, {picture.width}),
            tiff::longs(257, {picture.height}),
            tiff::shorts(258, std::vector<std::uint32_t>(rgb ? 3 : 1, rgb ? 8 : picture.depth->bits)),
            tiff::shorts(259, {1}),
            tiff::shorts(262, {picture.depth->photometric}),
            tiff::shorts(277, {rgb ? 3U : 1U}),
            tiff::longs(278, {picture.height}),
        };
        if (picture.depth->photometric == 3) {
            std::vector<std::uint32_t> map;
            for (const DWORD value : colorMap()) {
                map.push_back(value);
            }
            entries.push_back(tiff::shorts(320, map));
        }
        if (dotsPerInch != 0) {
            addResolution(entries, dotsPerInch);
        }
        file.page(entries, {picture.lines});
    }
    return file.bytes();
}

class Folder {
public:
    explicit Folder(std::string path) : path_(std::move(path)), list_(path_ + "/LIST", std::ios::binary) {}

    [[nodiscard]] std::string file(const std::string &name) const { return path_ + "/" + name; }
    void reference(const std::string &name, const tiff::Bytes &content) const {
        need(writeFile(file(name), content), name.c_str());
    }
    void pair(const std::string &name, const std::string &reference) {
        list_ << name << ' ' << reference << '\n';
        pairs_.emplace_back(name, reference);
    }
    [[nodiscard]] const std::vector<std::pair<std::string, std::string>> &pairs() const { return pairs_; }

private:
    std::string path_;
    std::vector<std::pair<std::string, std::string>> pairs_;
    std::ofstream list_;
};

void writeFormats(Folder &folder, const Picture &picture, const std::string &kind) {
    const std::string reference = "ref-" + kind + ".tif";
    folder.reference(reference, referenceOf(picture));
    for (const Format &format : kFormats) {
        if (format.bilevelOnly && picture.depth->bits != 1) {
            continue;
        }
        for (const DWORD rows : kLayouts) {
            for (const DWORD fillOrder : {1UL, 2UL}) {
                const LONG byteOrder = rows == 7 ? VELLUM_BYTE_ORDER_MM : VELLUM_BYTE_ORDER_II;
                const std::string name = std::string(format.name) + "-" + kind + "-rows" + std::to_string(rows) +
                                         "-fill" + std::to_string(fillOrder) + ".tif";
                addPage(folder.file(name), T_CREAT, byteOrder, picture, format, rows, fillOrder);
                // Differencing is for samples of whole bytes to libtiff; here 4 bits have it, too, and 1 bit ignores
                // it.
                const bool refused = format.option == 2 && picture.depth->bits < 8;
                folder.pair(refused ? "refused:" + name : name, reference);
            }
        }
    }
}

// A hundred pages saved one after the other, every compression in turn that is for bilevel pages.
void writeHundredPages(Folder &folder) {
    const Picture picture = makePicture(333, 50, kDepths[0], 4711);
    folder.reference("ref-hundred.tif", referenceOf(picture, 100));
    const std::string path = folder.file("hundred.tif");
    for (DWORD page = 0; page < 100; ++page) {
        const Format &format = kFormats[page % std::size(kFormats)];
        addPage(path, T_APPEND, 0, picture, format.option == 2 ? kFormats[0] : format, 50, 1);
    }
    need(GetNumberOfImagesInTiffFile(path.c_str()) == 100, "reading the hundred pages");
    folder.pair("hundred.tif", "ref-hundred.tif");
}

// Images moved without decoding: copied into new files and, page by page, behind each other; files rebuilt with another
// tag. Files of strips of 7 rows are in Motorola order.
void writeMoved(Folder &folder) {
    const auto pairs = folder.pairs();
    for (const auto &[name, reference] : pairs) {
        if (name.find("-rows7-fill1") == std::string::npos || name.starts_with("refused:")) {
            continue;
        }
        const std::string copy = "copied-" + name;
        need(CopyTiffImageInFile(folder.file(name).c_str(), 0, folder.file(copy).c_str(), T_CREAT) == 1, copy.c_str());
        folder.pair(copy, reference);
        const std::string edited = "edited-" + name;
        folder.reference(edited, readFile(folder.file(name)).value_or(Bytes{}));
        need(AddTiffTagToImage(folder.file(edited).c_str(), 0, 315, 2, "A. Clerk", 9) == 1, edited.c_str());
        folder.pair(edited, reference);
    }
    const std::string hundred = folder.file("hundred.tif");
    const std::string copied = folder.file("copied-hundred.tif");
    for (DWORD page = 0; page < 100; ++page) {
        need(CopyTiffImageInFile(hundred.c_str(), page, copied.c_str(), T_APPEND) == 1, copied.c_str());
    }
    need(AddTiffTagToImage(copied.c_str(), 50, 315, 2, "A. Clerk", 9) == 1, copied.c_str());
    need(DeleteTiffTagOfImage(copied.c_str(), 99, 305) == 1, copied.c_str());
    folder.pair("copied-hundred.tif", "ref-hundred.tif");
}

void writeRaw(Folder &folder) {
    const struct {
        const char *name;
        DWORD key;
        DWORD linesAtEnd;
    } kStreams[] = {{"raw-g3.g3", VELLUM_KEY_GROUP3_1D, 4},
                    {"raw-g3-fill.g3", VELLUM_KEY_GROUP3_1D_FILL, 4},
                    {"raw-g3-2d.g3", VELLUM_KEY_GROUP3_2D, 6},
                    {"raw-g3-2d-fill.g3", VELLUM_KEY_GROUP3_2D_FILL, 6},
                    {"raw-g4.g4", VELLUM_KEY_GROUP4, 1}};
    const Picture picture = makePicture(1728, 60, kDepths[0], 99);
    for (const auto &[name, key, linesAtEnd] : kStreams) {
        const HFILE file = _lcreat(folder.file(name).c_str(), 0);
        LineSource source;
        source.lineBytes = picture.lineBytes();
        source.data = picture.lines;
        need(EncodeCcittImage(file, picture.width, picture.height, key, source.userValue(), LineSource::supply) == 1,
             name);
        _lclose(file);
        // Such a reader does not know the height and takes the codes at the end for lines: empty ones.
        Picture read = picture;
        read.height += linesAtEnd;
        read.lines.resize(std::size_t{read.lineBytes()} * read.height);
        folder.reference("ref-" + std::string(name) + ".tif", referenceOf(read));
    }
}

// A DIB of a bilevel picture, 1 for black; or one with the colours and pixels exchanged.
Bytes dibOf(const Picture &picture, bool blackFirst, LONG pelsPerMeter) {
    PackedDib layout(static_cast<LONG>(picture.width), static_cast<LONG>(picture.height), 1,
                     blackFirst ? std::vector<RGBQUAD>{kBlackQuad, kWhiteQuad}
                                : std::vector<RGBQUAD>{kWhiteQuad, kBlackQuad});
    layout.header.biXPelsPerMeter = pelsPerMeter;
    layout.header.biYPelsPerMeter = pelsPerMeter;
    Bytes dib = layout.bytes();
    for (DWORD y = 0; y < picture.height; ++y) {
        const std::size_t row = 48 + (picture.height - 1 - y) * layout.stride();
        for (DWORD i = 0; i < picture.lineBytes(); ++i) {
            const BYTE byte = picture.lines[y * picture.lineBytes() + i];
            dib[row + i] = blackFirst ? static_cast<BYTE>(~byte) : byte;
        }
    }
    return dib;
}

// The numbers of a header's record, as a reader that knows nothing of the library takes them: a keyword at the start of
// one of 16 times 128 bytes, digits with commas between them, and blanks up to the record's end.
std::vector<DWORD> calsNumbers(const Bytes &file, std::string_view keyword) {
    constexpr std::size_t kRecords = 16;
    constexpr std::size_t kRecordBytes = 128;
    const std::string_view text(reinterpret_cast<const char *>(file.data()), file.size());
    std::vector<DWORD> numbers;
    for (std::size_t i = 0; i < kRecords; ++i) {
        const std::string_view record = text.substr(i * kRecordBytes, kRecordBytes);
        if (!record.starts_with(keyword)) {
            continue;
        }
        numbers.push_back(0);
        const std::string_view value = record.substr(keyword.size());
        const std::size_t end = value.find_last_not_of(' ') + 1;
        for (const char c : value.substr(0, end)) {
            need(c == ',' || (c >= '0' && c <= '9'), "reading a record of a CALS file");
            if (c == ',') {
                numbers.push_back(0);
            } else {
                numbers.back() = numbers.back() * 10 + static_cast<DWORD>(c - '0');
            }
        }
    }
    return numbers;
}

// The TIFF that a CALS file says it is: behind its 2048 bytes there is Group 4 code that any TIFF reader knows, and in
// them stand the picture's size and resolution.
tiff::Bytes wrappedCals(const Bytes &file) {
    constexpr std::size_t kHeaderBytes = 2048;
    need(file.size() > kHeaderBytes, "reading a CALS file");
    const std::vector<DWORD> type = calsNumbers(file, "rtype: ");
    const std::vector<DWORD> size = calsNumbers(file, "rpelcnt: ");
    const std::vector<DWORD> density = calsNumbers(file, "rdensty: ");
    need(type == std::vector<DWORD>{1} && size.size() == 2 && density.size() == 1, "reading a CALS header");
    std::vector<tiff::Entry> entries = {
        tiff::longs(256, {size[0]}), tiff::longs(257, {size[1]}), tiff::shorts(258, {1}),     tiff::shorts(259, {4}),
        tiff::shorts(262, {0}),      tiff::shorts(277, {1}),      tiff::longs(278, {size[1]})};
    addResolution(entries, density[0]);
    tiff::Builder wrapped;
    wrapped.page(entries, {{file.begin() + kHeaderBytes, file.end()}});
    return wrapped.bytes();
}

void writeCals(Folder &folder) {
    constexpr DWORD kDotsPerInch[] = {72, 200, 300, 400, 600};
    for (std::size_t i = 0; i < std::size(kWidths); ++i) {
        const DWORD width = kWidths[i];
        const DWORD dotsPerInch = kDotsPerInch[i];
        const Picture picture = makePicture(width, 50 + width % 20, kDepths[0], width + 5);
        const std::string name = "cals-" + std::to_string(width);
        folder.reference("ref-" + name + ".tif", referenceOf(picture, 1, dotsPerInch));
        for (const bool blackFirst : {false, true}) {
            const LONG pelsPerMeter = static_cast<LONG>((dotsPerInch * 10000 + 127) / 254);
            const DibBlock dib(dibOf(picture, blackFirst, pelsPerMeter));
            const std::string cals = folder.file(name + ".cal");
            need(SaveDIBInCALSFormat(cals.c_str(), dib.get(), nullptr, nullptr, 0) == 1, cals.c_str());
            const std::string wrapped = name + (blackFirst ? "-black-first.tif" : ".tif");
            folder.reference(wrapped, wrappedCals(readFile(cals).value_or(Bytes{})));
            folder.pair(wrapped, "ref-" + name + ".tif");
        }
    }
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: write_for_judges FOLDER\n");
        return 2;
    }
    Folder folder(argv[1]);
    for (const Depth &depth : kDepths) {
        for (const DWORD width : kWidths) {
            writeFormats(folder, makePicture(width, kHeight, depth, width * 31 + depth.bits),
                         std::string(depth.name) + "-" + std::to_string(width));
        }
    }
    writeHundredPages(folder);
    writeMoved(folder);
    writeRaw(folder);
    writeCals(folder);
    return 0;
}
