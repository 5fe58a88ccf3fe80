// Windows: CALS files with changed headers in the dialogs and on the screen. Headers end in front of a page that cannot
// be read or written.
#include "cals/changed_cals.h"
#include "support/decode_lines.h"
#include "support/dialog_user.h"
#include "support/gdi_calls.h"
#include "support/screen_host.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

// A header's 2048 characters, and nothing behind them.
class FencedHeader {
public:
    explicit FencedHeader(const Bytes &file)
        : pages_(static_cast<char *>(VirtualAlloc(nullptr, 2 * kPage, MEM_RESERVE, PAGE_NOACCESS))) {
        VirtualAlloc(pages_, kPage, MEM_COMMIT, PAGE_READWRITE);
        Bytes header = file;
        header.resize(2048, BYTE{' '});
        std::copy(header.begin(), header.end(), get());
    }
    FencedHeader(const FencedHeader &) = delete;
    FencedHeader &operator=(const FencedHeader &) = delete;
    ~FencedHeader() { VirtualFree(pages_, 0, MEM_RELEASE); }

    [[nodiscard]] char *get() const { return pages_ + kPage - 2048; }
    [[nodiscard]] Bytes content() const { return {get(), get() + 2048}; }

private:
    static constexpr SIZE_T kPage = 4096;
    char *pages_;
};

bool isTextRecord(const std::string &record) {
    for (const char *keyword :
         {"srcdocid: ", "dstdocis: ", "txtfileid: ", "figid: ", "scrgph: ", "doccls: ", "notes: "}) {
        if (record.starts_with(keyword)) {
            return true;
        }
    }
    return false;
}

TEST(ChangedCalsInDialogs, AreListedWhateverTheySay) {
    const std::vector<Bytes> files = keptCalsFiles();
    const GdiCalls calls;
    for (std::uint32_t i = 0; i < 60; ++i) {
        const TempFile temp(i < files.size() ? files[i] : changedCalsFile(files, i));
        const bool header = static_cast<bool>(OwnedBlock(ReadCALSHead(temp.path())));
        const DialogUser user([&](HWND dialog) {
            EXPECT_EQ(SendDlgItemMessageA(dialog, 1001, LB_GETCOUNT, 0, 0), header ? 16 : 1);
            press(dialog, i % 2 == 0 ? IDOK : IDCANCEL);
        });
        ASSERT_EQ(ShowCALSInfo(nullptr, temp.path()), i % 2 == 0 ? 1 : 2) << i;
        EXPECT_FALSE(user.leftOpen());
    }
    EXPECT_EQ(GdiCalls::counts().objects, 0);
    EXPECT_EQ(GdiCalls::counts().contexts, 0);
}

// What is no text stays; what is one keeps its keyword.
TEST(ChangedCalsInDialogs, AreEditedWithoutHarmToOtherRecords) {
    const std::vector<Bytes> files = keptCalsFiles();
    for (std::uint32_t i = 0; i < 60; ++i) {
        const FencedHeader header(i < files.size() ? files[i] : changedCalsFile(files, i));
        const Bytes before = header.content();
        const bool keep = i % 3 != 0;
        const DialogUser user([&](HWND dialog) {
            if (i % 2 == 0) {
                SetDlgItemTextA(dialog, 1006 + static_cast<int>(i / 2 % 7), std::string(300, 't').c_str());
            }
            press(dialog, keep ? IDOK : IDCANCEL);
        });
        ASSERT_EQ(EditCALSHead(nullptr, nullptr, header.get()), keep ? 1 : 2) << i;
        EXPECT_FALSE(user.leftOpen());
        if (!keep) {
            EXPECT_EQ(header.content(), before) << i;
            continue;
        }
        const Records old = recordsOf(before);
        const Records edited = recordsOf(header.content());
        for (std::size_t record = 0; record < 16; ++record) {
            if (isTextRecord(old[record])) {
                EXPECT_EQ(edited[record].substr(0, 6), old[record].substr(0, 6)) << i;
            } else {
                EXPECT_EQ(edited[record], old[record]) << i;
            }
        }
    }
}

TEST(ChangedCalsOnTheScreen, ArePaintedOrRefusedAsStated) {
    const std::vector<Bytes> files = keptCalsFiles();
    Host host(120, 90);
    int painted = 0;
    for (std::uint32_t i = 0; i < 300; ++i) {
        const TempFile temp(i < files.size() ? files[i] : changedCalsFile(files, i));
        host.reset();
        const GdiCalls calls;
        SetTiffError(VELLUM_OK);
        const DWORD result = DecompressCALSToScreen(host.window(), host.dc(), temp.path(), nullptr,
                                                    static_cast<BYTE>(i % 4 | (i % 5 == 0 ? VELLUM_SHOW_FIT : 0)));
        const DWORD error = TiffError();
        ASSERT_EQ(result, error == VELLUM_OK ? 1U : 0U) << i;
        switch (error) {
        case VELLUM_OK:
        case VELLUM_NO_MEMORY:
        case VELLUM_UNEXPECTED_END:
        case VELLUM_CODE_ERROR:
        case VELLUM_NOT_CALS:
        case VELLUM_EOFB_MISSING:
        case VELLUM_EOFB_UNEXPECTED:
            break;
        default:
            FAIL() << "error " << error << ", file " << i;
        }
        EXPECT_EQ(GdiCalls::counts().objects, 0) << i;
        EXPECT_EQ(GdiCalls::counts().allContexts(), 0) << i;
        EXPECT_EQ(GdiCalls::counts().savedStates, 0) << i;
        painted += static_cast<int>(result);
    }
    EXPECT_GT(painted, 10);
}

} // namespace
