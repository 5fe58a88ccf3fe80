// The companion module as Windows loads it: a DLL found by its name, and message boxes on the screen.
#include "companion/noted.h"
#include "support/decode_lines.h"
#include "support/jpeg_tiff.h"
#include "support/module_folder.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

const NotedByCompanion *noted() {
    const HMODULE module = GetModuleHandleA(kCompanionName);
    return module == nullptr ? nullptr
                             : reinterpret_cast<const NotedByCompanion *>(
                                   reinterpret_cast<const void *>(GetProcAddress(module, "noted")));
}

// While it lives, a timer of this thread looks for a message box, notes it and presses OK.
class MessageBoxReader {
public:
    MessageBoxReader() {
        one = this;
        timer_ = SetTimer(nullptr, 0, 20, &look);
    }
    MessageBoxReader(const MessageBoxReader &) = delete;
    MessageBoxReader &operator=(const MessageBoxReader &) = delete;
    ~MessageBoxReader() {
        KillTimer(nullptr, timer_);
        one = nullptr;
    }

    // A window of the program's own, to see whether the box shuts it off.
    HWND window = nullptr;
    bool windowWasEnabled = true;
    int count = 0;
    std::string text;
    std::string caption;

private:
    static void CALLBACK look(HWND, UINT, UINT_PTR, DWORD) { EnumThreadWindows(GetCurrentThreadId(), &visit, 0); }

    static BOOL CALLBACK visit(HWND found, LPARAM) {
        char kind[32] = {};
        GetClassNameA(found, kind, sizeof kind);
        if (std::strcmp(kind, "#32770") != 0 || one == nullptr || one->last_ == found) {
            return TRUE;
        }
        constexpr int kMessageText = 0xFFFF;
        char buffer[200] = {};
        GetDlgItemTextA(found, kMessageText, buffer, sizeof buffer);
        one->text = buffer;
        GetWindowTextA(found, buffer, sizeof buffer);
        one->caption = buffer;
        one->windowWasEnabled = IsWindowEnabled(one->window) != FALSE;
        one->last_ = found;
        ++one->count;
        PostMessageA(found, WM_COMMAND, IDOK, 0);
        return FALSE;
    }

    static inline MessageBoxReader *one = nullptr;
    UINT_PTR timer_ = 0;
    HWND last_ = nullptr;
};

TEST(CompanionDll, IsLoadedByItsNameDecodesAndIsUnloadedWithTheTiff) {
    const ModuleFolder folder("companion");
    EXPECT_EQ(noted(), nullptr);
    {
        const OpenedTiff tiff(
            jpegTiff({.width = 4, .height = 5, .tileWidth = 4, .tileLength = 2, .tileOffsets = {20, 40, 8}}));
        ASSERT_TRUE(registerImage(tiff.get(), 0));
        EXPECT_EQ(noted(), nullptr) << "loaded before it was needed";
        for (DWORD run = 1; run <= 2; ++run) {
            LineLog log;
            EXPECT_EQ(decodeInto(log, tiff.get(), 0), kDecoded);
            EXPECT_TRUE(log.inOrder);
            EXPECT_EQ(log.data, (Bytes{12, 13, 14, 15, 16, 17, 18, 19, 32, 33, 34, 35, 36, 37, 38, 39, 0, 1, 2, 3}));
            ASSERT_NE(noted(), nullptr);
            EXPECT_EQ(noted()->calls, run);
        }
    }
    EXPECT_EQ(noted(), nullptr) << "still loaded";
}

TEST(CompanionDll, SeesTheRecordAsItWasCompiledForIt) {
    const ModuleFolder folder("companion");
    const OpenedTiff tiff(jpegTiff({.width = 20, .height = 10, .samples = 3}));
    ASSERT_TRUE(registerImage(tiff.get(), 0));
    LineLog log;
    decodeInto(log, tiff.get(), 0);
    ASSERT_NE(noted(), nullptr);
    const auto word = [](std::size_t offset) {
        DWORD value = 0;
        std::memcpy(&value, noted()->record + offset, sizeof value);
        return value;
    };
    EXPECT_EQ(word(20), log.userValue());
    EXPECT_EQ(word(28), 40U) << "biSize";
    EXPECT_EQ(word(32), 20U) << "biWidth";
    EXPECT_EQ(word(36), 10U) << "biHeight";
    EXPECT_EQ(word(40), 24U << 16 | 1U) << "biPlanes, biBitCount";
    EXPECT_EQ(word(68), 60U) << "bytes per line";
    EXPECT_EQ(word(72), 6U) << "compression key";
    EXPECT_EQ(word(120), 6U) << "tiles";
    EXPECT_EQ(word(124), 4U) << "lines of a tile";
    EXPECT_EQ(word(144), static_cast<DWORD>(reinterpret_cast<std::uintptr_t>(&LineLog::receive)));
    EXPECT_EQ(word(156), 1U) << "JPEGProc";
    EXPECT_EQ(word(176), 16U) << "tile width";
    EXPECT_EQ(word(188), 3U) << "tiles down";
    EXPECT_EQ(word(204), 1U) << "vertical subsampling";
}

TEST(CompanionDll, FillsADibThroughTheLoader) {
    const ModuleFolder folder("companion");
    const TempFile file(jpegTiff({.width = 4, .height = 2, .tileWidth = 4, .tileLength = 2, .tileOffsets = {20}}));
    const HGLOBAL dib = LoadTiffIntoDIB(file.path(), 0, 0);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
    ASSERT_NE(dib, nullptr);
    const Bytes bytes = blockBytes(dib);
    EXPECT_EQ(Bytes(bytes.end() - 8, bytes.end()), (Bytes{16, 17, 18, 19, 12, 13, 14, 15}));
    GlobalFree(dib);
    EXPECT_EQ(noted(), nullptr);
}

// A load with the real message box on the screen. Result: the one that was seen.
void decodeUnderAMessageBox(MessageBoxReader &reader) {
    const OpenedTiff tiff(jpegTiff({}));
    ASSERT_TRUE(registerImage(tiff.get(), 0));
    LineLog log;
    EXPECT_EQ(decodeInto(log, tiff.get(), 0), kDecoded);
    EXPECT_EQ(log.lines, 0U);
    EXPECT_EQ(reader.count, 1);
    EXPECT_EQ(reader.caption, "VELLUMSDK");
}

TEST(CompanionDll, WithoutItATaskModalMessageSaysSo) {
    MessageBoxReader reader;
    reader.window = CreateWindowA("STATIC", "a window of the program", WS_OVERLAPPED | WS_VISIBLE, 0, 0, 50, 50,
                                  nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(reader.window, nullptr);
    decodeUnderAMessageBox(reader);
    EXPECT_EQ(reader.text, "'DCTLIB.DLL' module is not found");
    EXPECT_FALSE(reader.windowWasEnabled) << "the message leaves the program's windows open";
    EXPECT_TRUE(IsWindowEnabled(reader.window));
    DestroyWindow(reader.window);
}

TEST(CompanionDll, WithoutItsEntryTheOtherMessageSaysSo) {
    const ModuleFolder folder("companion_without_decoder");
    MessageBoxReader reader;
    decodeUnderAMessageBox(reader);
    EXPECT_EQ(reader.text, "'JPEGDecoder' function is not found");
}

// The tags of an image that is to be one JPEG tile.
TiffHandle newJpegTiff(const char *path, LONG width, LONG height) {
    const TiffHandle tiff = OpenTiffFile(path, T_CREAT);
    DefineTiffImage(tiff);
    DefineTiffImageInfo(tiff, 0, 259, 3, 6);
    BITMAP bitmap{};
    bitmap.bmWidth = width;
    bitmap.bmHeight = height;
    bitmap.bmPlanes = 1;
    bitmap.bmBitsPixel = 24;
    EXPECT_EQ(DefineGeneralTags(tiff, 0, bitmap), 0U);
    return tiff;
}

DWORD VELLUMAPI countingLine(BYTE *line, DWORD lineIndex, DWORD /*userValue*/) {
    for (DWORD i = 0; i < 12; ++i) {
        line[i] = static_cast<BYTE>(lineIndex * 12 + i);
    }
    return 0;
}

TEST(CompanionDll, EncodesWhatItDecodes) {
    const ModuleFolder folder("companion");
    const TempFile file;
    const TiffHandle tiff = newJpegTiff(file.path(), 4, 3);
    EXPECT_EQ(EncodeTiffImage(tiff, 0, 0, countingLine), 1U) << TiffError();
    EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
    ASSERT_NE(noted(), nullptr);
    EXPECT_EQ(noted()->calls, 1U);
    EXPECT_EQ(CloseTiffFile(tiff), 1U);
    EXPECT_EQ(noted(), nullptr) << "still loaded";
    const OpenedTiff written{std::string(file.path())};
    ASSERT_TRUE(registerImage(written.get(), 0));
    LineLog log;
    log.lineBytes = 12;
    EXPECT_EQ(decodeInto(log, written.get(), 0), kDecoded);
    Bytes expected(36);
    for (BYTE i = 0; i < 36; ++i) {
        expected[i] = i;
    }
    EXPECT_EQ(log.data, expected);
}

TEST(CompanionDll, WithoutItsEncoderTheMessageSaysSoAndNoFileAppears) {
    const ModuleFolder folder("companion_without_decoder");
    MessageBoxReader reader;
    const TempFile file;
    const TiffHandle tiff = newJpegTiff(file.path(), 4, 3);
    EXPECT_EQ(EncodeTiffImage(tiff, 0, 0, countingLine), 1U);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
    CloseTiffFile(tiff);
    EXPECT_EQ(reader.count, 1);
    EXPECT_EQ(reader.text, "'JPEGEncoder' function is not found");
    EXPECT_FALSE(readFile(file.path()));
}

// Closing a TIFF unloads the module; a line function may do that while the module is at work.
DWORD VELLUMAPI closeAnotherTiff(BYTE *line, DWORD lineIndex, DWORD userValue) {
    if (lineIndex == 1) {
        CloseTiffFile(reinterpret_cast<TiffHandle>(static_cast<UINT_PTR>(userValue)));
    }
    return countingLine(line, lineIndex, 0);
}

TEST(CompanionDll, StaysLoadedUnderACallInWhichATiffIsClosed) {
    const ModuleFolder folder("companion");
    const TempFile file;
    const TempFile unused;
    const TiffHandle tiff = newJpegTiff(file.path(), 4, 3);
    const TiffHandle another = OpenTiffFile(unused.path(), T_CREAT);
    EXPECT_EQ(EncodeTiffImage(tiff, 0, static_cast<DWORD>(reinterpret_cast<UINT_PTR>(another)), closeAnotherTiff), 1U);
    EXPECT_EQ(noted(), nullptr) << "unloaded behind the call";
    CloseTiffFile(tiff);
}

} // namespace
