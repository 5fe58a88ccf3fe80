// vellum convert --append: pages added to a file in place, and the old file when that fails.
#include "cli/copied_files.h"
#include "cli/vellum_process.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vellum::test {
namespace {

using Names = std::vector<std::string>;

// The byte of every page, by way of bitmaps.
Bytes pixelsOf(const WorkFolder &folder, const std::string &name) {
    EXPECT_EQ(folder.run({"convert", "--all", name, "pixels.bmp"}).err, "");
    Bytes pixels;
    for (unsigned page = 1; page < 100; ++page) {
        const auto bitmap =
            folder.get(std::string("pixels-0") + (page < 10 ? "0" : "") + std::to_string(page) + ".bmp");
        if (!bitmap) {
            break;
        }
        pixels.push_back(bitmap->at(62));
    }
    return pixels;
}

bool startsWith(const std::optional<Bytes> &file, const Bytes &start, std::size_t except, std::size_t exceptBytes) {
    if (!file || file->size() < start.size()) {
        return false;
    }
    Bytes head(file->begin(), file->begin() + static_cast<std::ptrdiff_t>(start.size()));
    std::copy_n(start.begin() + static_cast<std::ptrdiff_t>(except), exceptBytes,
                head.begin() + static_cast<std::ptrdiff_t>(except));
    return head == start;
}

TEST(ConvertAppend, AddsAPageInEitherByteOrder) {
    for (const unsigned order : {unsigned{tiff::kII}, unsigned{tiff::kMM}}) {
        const WorkFolder folder;
        tiff::Builder old(static_cast<std::uint16_t>(order));
        addPage(old, {0x11}, 1, 1);
        addPage(old, {0x22}, 1, 1);
        folder.put("old.tif", old.bytes());
        folder.put("new.tif", pagesOf({0x33}));
        const Outcome outcome = folder.run({"convert", "--append", "new.tif", "old.tif"});
        EXPECT_EQ(outcome.out, "old.tif: page 3: 8 x 1, 1 bit, g4\n");
        EXPECT_EQ(outcome.err, "");
        EXPECT_EQ(outcome.status, 0U);
        // In place: all that was there stays where it is, but for the last link.
        EXPECT_TRUE(startsWith(folder.get("old.tif"), old.bytes(), old.lastLink(), 4));
        EXPECT_EQ(pixelsOf(folder, "old.tif"), (Bytes{0x11, 0x22, 0x33}));
        const std::string told = folder.run({"info", "old.tif"}).out;
        EXPECT_NE(told.find(order == tiff::kMM ? "3 pages, byte order MM" : "3 pages, byte order II"),
                  std::string::npos);
        EXPECT_EQ(folder.run({"check", "old.tif"}).status, 0U);
    }
}

TEST(ConvertAppend, AddsAllPages) {
    const WorkFolder folder;
    folder.put("old.tif", pagesOf({0x11}, tiff::kMM));
    folder.put("new.tif", pagesOf({0x22, 0x33, 0x44}));
    const Outcome outcome = folder.run({"convert", "--append", "--all", "new.tif", "old.tif", "--compression=none"});
    EXPECT_EQ(outcome.out, "old.tif: page 2: 8 x 1, 1 bit, none\n"
                           "old.tif: page 3: 8 x 1, 1 bit, none\n"
                           "old.tif: page 4: 8 x 1, 1 bit, none\n");
    EXPECT_EQ(pixelsOf(folder, "old.tif"), (Bytes{0x11, 0x22, 0x33, 0x44}));
}

TEST(ConvertAppend, AMissingFileIsMadeAnew) {
    const WorkFolder folder;
    folder.put("new.tif", pagesOf({0x22, 0x33}));
    EXPECT_EQ(folder.run({"convert", "--append", "new.tif", "--page=2", "out.tif"}).out,
              "out.tif: page 1: 8 x 1, 1 bit, g4\n");
    EXPECT_EQ(folder.run({"convert", "--append", "new.tif", "out.tif"}).out, "out.tif: page 2: 8 x 1, 1 bit, g4\n");
    EXPECT_EQ(folder.files(), (Names{"new.tif", "out.tif"}));
    EXPECT_EQ(pixelsOf(folder, "out.tif"), (Bytes{0x33, 0x22}));
}

TEST(ConvertAppend, PagesThatFailAreLeftOut) {
    tiff::Builder file;
    addPage(file, {0x22}, 1, 50000);
    addPage(file, {0x33}, 1, 1);
    const WorkFolder folder;
    folder.put("old.tif", pagesOf({0x11}));
    folder.put("new.tif", file.bytes());
    const Outcome outcome = folder.run({"convert", "--append", "--all", "new.tif", "old.tif"});
    EXPECT_EQ(outcome.out, "old.tif: page 2: 8 x 1, 1 bit, g4\n");
    EXPECT_EQ(outcome.err, "vellum: new.tif: page 1: Image compression type is not known.\n");
    EXPECT_EQ(outcome.status, 1U);
    EXPECT_EQ(pixelsOf(folder, "old.tif"), (Bytes{0x11, 0x33}));
}

TEST(ConvertAppend, WithoutAnyPageTheFileIsNotTouched) {
    tiff::Builder file;
    addPage(file, {0x22}, 1, 50000);
    const WorkFolder folder;
    folder.put("old.tif", pagesOf({0x11}));
    folder.put("new.tif", file.bytes());
    EXPECT_EQ(folder.run({"convert", "--append", "new.tif", "old.tif"}).status, 1U);
    EXPECT_EQ(folder.get("old.tif"), pagesOf({0x11}));
}

TEST(ConvertAppend, FilesThatCannotBeAddedToStayAsTheyAre) {
    tiff::Builder broken;
    addPage(broken, {0x11}, 1, 1);
    broken.linkTo(0x00FFFFFF);
    tiff::Builder loop;
    loop.linkTo(loop.position());
    addPage(loop, {0x11}, 1, 1);
    const std::uint32_t first = 10; // the data, a byte to make it even, and then the directory
    loop.linkTo(first);
    struct Case {
        Bytes file;
        const char *message;
    };
    const Case cases[] = {
        {{'n', 'o', ' ', 't', 'i', 'f', 'f', '!', '!'}, "Invalid byte order."},
        {{}, "General I/O error in reading or writting."},
        {broken.bytes(), "the chain of pages breaks behind page 1: General I/O error in reading or writting."},
        {loop.bytes(), "the chain of pages leads back from page 1 to page 1."},
    };
    for (const Case &entry : cases) {
        const WorkFolder folder;
        folder.put("old.tif", entry.file);
        folder.put("new.tif", pagesOf({0x22}));
        const Outcome outcome = folder.run({"convert", "--append", "new.tif", "old.tif"});
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, std::string("vellum: old.tif: no page can be added: ") + entry.message + "\n");
        EXPECT_EQ(outcome.status, 1U);
        EXPECT_EQ(folder.get("old.tif"), entry.file);
        EXPECT_EQ(folder.files(), (Names{"new.tif", "old.tif"}));
    }
}

TEST(ConvertAppend, AFileThatIsReadOnlyOrInUseStaysAsItWas) {
    const WorkFolder folder;
    folder.put("old.tif", pagesOf({0x11}));
    folder.put("new.tif", pagesOf({0x22}));
    const std::string path = folder.path("old.tif");
    SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_READONLY);
    const Outcome denied = folder.run({"convert", "--append", "new.tif", "old.tif"});
    SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(denied.err, "vellum: old.tif: cannot be written: access is denied.\n");
    EXPECT_EQ(denied.status, 1U);

    const HANDLE user = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(user, INVALID_HANDLE_VALUE);
    const Outcome used = folder.run({"convert", "--append", "new.tif", "old.tif"});
    CloseHandle(user);
    EXPECT_EQ(used.err, "vellum: old.tif: cannot be written: another program is using it.\n");
    EXPECT_EQ(used.status, 1U);
    EXPECT_EQ(folder.get("old.tif"), pagesOf({0x11}));
}

// What could be added before the failure goes as well: the file is what it was, byte for byte.
TEST(ConvertAppend, AFailureGivesTheFileItsOldLengthBack) {
    constexpr unsigned kMostPages = 1000;
    tiff::Builder old;
    for (unsigned page = 0; page < kMostPages - 1; ++page) {
        addPage(old, {0x11}, 1, 1);
    }
    const WorkFolder folder;
    folder.put("old.tif", old.bytes());
    folder.put("new.tif", pagesOf({0x22, 0x33}));
    const Outcome outcome = folder.run({"convert", "--append", "--all", "new.tif", "old.tif"});
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "vellum: old.tif: cannot be written: a file has at most 1000 pages.\n");
    EXPECT_EQ(outcome.status, 1U);
    EXPECT_TRUE(folder.get("old.tif") == old.bytes());
    // One page is taken, and is the last one.
    EXPECT_EQ(folder.run({"convert", "--append", "new.tif", "old.tif"}).out, "old.tif: page 1000: 8 x 1, 1 bit, g4\n");
    EXPECT_EQ(folder.run({"convert", "--append", "new.tif", "old.tif"}).status, 1U);
}

} // namespace
} // namespace vellum::test
