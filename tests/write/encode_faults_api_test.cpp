// Every system call of a save fails in turn: the stated error comes back, the pages that were there stay readable, and
// nothing is left open, locked or allocated (natively the shim sees to that at the end of every test).
#include "support/decode_lines.h"
#include "support/encode_lines.h"
#include "support/faults.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace vellum::test;

struct Compression {
    const char *name;
    std::vector<TagValue> tags;
};

const std::vector<Compression> &compressions() {
    static const std::vector<Compression> kAll = {
        {"Uncompressed", {{259, 3, {1}}}},
        {"ModifiedHuffman", {{259, 3, {2}}}},
        {"Group3", {{259, 3, {3}}}},
        {"Group3TwoDimensional", {{259, 3, {3}}, {292, 4, {5}}}},
        {"Group4", {{259, 3, {4}}}},
        {"Lzw", {{259, 3, {5}}}},
        {"LzwDifferencing", {{259, 3, {5}}, {317, 3, {2}}}},
        {"PackBits", {{259, 3, {32773}}}},
    };
    return kAll;
}

// Noise that no compression makes small, so that the code takes several buffers.
LineSource noise(DWORD lineBytes, DWORD lines) {
    LineSource source;
    source.lineBytes = lineBytes;
    DWORD state = 12345;
    for (DWORD i = 0; i < lineBytes * lines; ++i) {
        state = state * 1664525 + 1013904223;
        source.data.push_back(static_cast<BYTE>(state >> 24));
    }
    return source;
}

class SaveFaults : public ::testing::TestWithParam<Compression> {
protected:
    static constexpr DWORD kWidth = 800;
    static constexpr DWORD kHeight = 400;

    static std::vector<TagValue> tags(DWORD rowsPerStrip) {
        auto all = pictureTags(kWidth, kHeight, 1, rowsPerStrip, {{270, 2, {'a', 'b', 'c', 'd', 'e', 'f', 0}}});
        all.insert(all.end(), GetParam().tags.begin(), GetParam().tags.end());
        return all;
    }

    struct Result {
        DWORD result = 0;
        DWORD error = 0;
    };

    static Result append(const char *path) {
        LineSource source = noise(kWidth / 8, kHeight);
        const WrittenTiff tiff(path, T_APPEND);
        if (tiff.get() == nullptr) {
            return {0, TiffError()};
        }
        const DWORD result = tiff.add(tags(150), source);
        return {result, TiffError()};
    }

    // The pages of the file are as they were.
    static void expectPages(const char *path, DWORD count, const Bytes &pixels) {
        const OpenedTiff tiff{std::string(path)};
        ASSERT_EQ(NumberOfTiffImages(tiff.get(), VELLUM_ALL_IMAGES), static_cast<LONG>(count));
        EXPECT_EQ(TiffError(), DWORD{VELLUM_OK}) << "the chain is whole";
        LineLog log;
        log.lineBytes = kWidth / 8;
        ASSERT_EQ(GetTiffImage(tiff.get(), count - 1), 1u);
        EXPECT_EQ(DecodeTiffImage(tiff.get(), count - 1, 0, 0, log.userValue(), LineLog::receive), 1u);
        EXPECT_TRUE(log.data == pixels);
    }

    void failEach(Call call, std::initializer_list<DWORD> allowed) {
        const Bytes pixels = noise(kWidth / 8, kHeight).data;
        const TempFile file;
        ASSERT_EQ(append(file.path()).result, 1u);
        const auto before = readFile(file.path());
        ASSERT_TRUE(before);
        for (long nth = 0;; ++nth) {
            ASSERT_LT(nth, 1000);
            ASSERT_TRUE(writeFile(file.path(), *before));
            Result result;
            bool happened = false;
            {
                const FailNth fault(call, nth);
                result = append(file.path());
                happened = fault.happened();
            }
            if (!happened) {
                EXPECT_EQ(result.result, 1u);
                expectPages(file.path(), 2, pixels);
                EXPECT_GT(nth, 0) << "there is no such call";
                break;
            }
            if (result.result == 1) {
                // A call that the save could do without.
                expectPages(file.path(), 2, pixels);
                continue;
            }
            EXPECT_NE(std::find(allowed.begin(), allowed.end(), result.error), allowed.end())
                << "call " << nth << " failed with error " << result.error;
            expectPages(file.path(), 1, pixels);
        }
    }
};

TEST_P(SaveFaults, EveryWriteInTurn) {
    failEach(Call::Write, {VELLUM_IO_ERROR});
}

TEST_P(SaveFaults, EverySeekInTurn) {
    failEach(Call::Seek, {VELLUM_IO_ERROR});
}

TEST_P(SaveFaults, EveryOpenInTurn) {
    failEach(Call::Open, {VELLUM_IO_ERROR});
}

TEST_P(SaveFaults, EveryReadInTurn) {
    failEach(Call::Read, {VELLUM_IO_ERROR, VELLUM_NOT_TIFF});
}

TEST_P(SaveFaults, EveryAllocationInTurn) {
    failEach(Call::Allocate, {VELLUM_NO_MEMORY, VELLUM_TAG_MISSING});
}

TEST_P(SaveFaults, EveryReallocationInTurn) {
    failEach(Call::Reallocate, {VELLUM_NO_MEMORY, VELLUM_TAG_MISSING});
}

TEST_P(SaveFaults, AMemoryTiffThatCannotGrowKeepsItsBlock) {
    for (long nth = 0;; ++nth) {
        ASSERT_LT(nth, 1000);
        LineSource source = noise(kWidth / 8, kHeight);
        const WrittenTiff tiff;
        const LONG index = tiff.define(tags(150));
        ASSERT_EQ(index, 0);
        DWORD result = 0;
        bool happened = false;
        {
            const FailNth fault(Call::Reallocate, nth);
            result = EncodeTiffImage(tiff.get(), 0, source.userValue(), LineSource::supply);
            happened = fault.happened();
        }
        ASSERT_NE(GetMemoryTiffHandle(tiff.get()), nullptr);
        if (!happened) {
            EXPECT_EQ(result, 1u);
            break;
        }
        if (result == 0) {
            EXPECT_TRUE(TiffError() == VELLUM_IO_ERROR || TiffError() == VELLUM_NO_MEMORY) << TiffError();
            const OpenedTiff written(tiff.memory());
            EXPECT_EQ(NumberOfTiffImages(written.get(), VELLUM_ALL_IMAGES), 0);
        }
    }
}

std::string compressionName(const ::testing::TestParamInfo<Compression> &info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(All, SaveFaults, ::testing::ValuesIn(compressions()), compressionName);

} // namespace
