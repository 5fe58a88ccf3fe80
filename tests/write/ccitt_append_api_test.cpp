// Appending an image's strips to a file: which bytes arrive where, and what becomes of the target when they do not.
#include "support/faults.h"
#include "support/paths.h"
#include "support/random_pictures.h"
#include "support/tiff_builder.h"
#include "vellum32.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace vellum::test;

// Bytes that no run of the copy could give by chance.
Bytes noise(std::size_t size, std::uint32_t seed) {
    Random random(seed);
    Bytes bytes;
    while (bytes.size() < size) {
        bytes.push_back(static_cast<BYTE>(random.below(256)));
    }
    return bytes;
}

Bytes joined(const std::vector<Bytes> &parts) {
    Bytes all;
    for (const Bytes &part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

const Bytes kOld = noise(100, 1);
const std::vector<Bytes> kStrips = {noise(30, 2), noise(1, 3), {}, noise(500, 4)};

// A file with two images: one of a single strip, one of these.
Bytes tiffWith(const std::vector<Bytes> &strips, std::uint16_t byteOrder = tiff::kII) {
    tiff::Builder file(byteOrder);
    file.page({tiff::shorts(256, {8}), tiff::shorts(257, {1})}, {{0x77}});
    file.page({tiff::shorts(256, {8}), tiff::shorts(257, {4})}, strips);
    return file.bytes();
}

// A file of one image with exactly these entries for its strips.
Bytes tiffWithTags(const std::vector<tiff::Entry> &entries, const Bytes &data = noise(50, 5)) {
    tiff::Builder file;
    file.append(data); // from offset 8 on
    file.directory(entries);
    return file.bytes();
}

// What one call did.
struct Appended {
    bool done = false;
    std::optional<Bytes> target; // nothing when it is gone
};

Appended append(const Bytes &tiff, DWORD image, LONG offset, const Bytes &old = kOld) {
    const TempFile source(tiff);
    const TempFile target(old);
    const char *path = AppendCCITTImageFile(target.path(), source.path(), image, offset);
    if (path != nullptr) {
        EXPECT_STREQ(path, target.path());
    }
    EXPECT_TRUE(readFile(source.path()) == tiff) << "the source is only read";
    return {path != nullptr, readFile(target.path())};
}

void expectUntouched(const Appended &appended) {
    EXPECT_FALSE(appended.done);
    EXPECT_EQ(appended.target, kOld);
}

void expectDeleted(const Appended &appended) {
    EXPECT_FALSE(appended.done);
    EXPECT_FALSE(appended.target) << "the target is still there";
}

// ---------------------------------------------------------------- where the bytes go

TEST(CcittAppend, TheTargetGrowsByTheStripsInTheirOrder) {
    for (const std::uint16_t byteOrder : {tiff::kII, tiff::kMM}) {
        const Appended appended = append(tiffWith(kStrips, byteOrder), 1, 0);
        EXPECT_TRUE(appended.done);
        EXPECT_EQ(appended.target, joined({kOld, joined(kStrips)}));
    }
    EXPECT_EQ(append(tiffWith(kStrips), 0, 0).target, joined({kOld, {0x77}})) << "the other image";
}

TEST(CcittAppend, AnEmptyTargetIsATarget) {
    const Appended appended = append(tiffWith(kStrips), 1, 0, {});
    EXPECT_TRUE(appended.done);
    EXPECT_EQ(appended.target, joined(kStrips));
}

TEST(CcittAppend, ANegativeOffsetOverwritesTheEnd) {
    const Appended appended = append(tiffWith(kStrips), 1, -10);
    EXPECT_TRUE(appended.done);
    EXPECT_EQ(appended.target, joined({Bytes(kOld.begin(), kOld.end() - 10), joined(kStrips)}));
    const Appended inside = append(tiffWith({{1, 2, 3}}), 1, -10);
    EXPECT_EQ(inside.target,
              joined({Bytes(kOld.begin(), kOld.end() - 10), {1, 2, 3}, Bytes(kOld.end() - 7, kOld.end())}))
        << "what lies behind the strips stays";
    EXPECT_EQ(append(tiffWith(kStrips), 1, -100).target, joined(kStrips));
}

TEST(CcittAppend, APositiveOffsetLeavesAGap) {
    const Appended appended = append(tiffWith({{1, 2, 3}}), 1, 5);
    EXPECT_TRUE(appended.done);
    ASSERT_TRUE(appended.target);
    EXPECT_EQ(appended.target->size(), 108U);
    EXPECT_EQ(Bytes(appended.target->end() - 3, appended.target->end()), (Bytes{1, 2, 3}));
}

TEST(CcittAppend, LongStripsAreCopiedInPieces) {
    for (const std::size_t size : {65533U, 65534U, 65535U, 131068U, 200000U}) {
        const Bytes strip = noise(size, 6);
        const Appended appended = append(tiffWith({{9}, strip, {8}}), 1, 0);
        EXPECT_TRUE(appended.done);
        EXPECT_TRUE(appended.target == joined({kOld, {9}, strip, {8}})) << size;
    }
}

TEST(CcittAppend, StripsMayLieAnywhereAndShareBytes) {
    const Bytes data = noise(50, 5);
    const Appended appended = append(tiffWithTags({tiff::longs(273, {20, 8, 22}), tiff::longs(279, {4, 3, 4})}), 0, 0);
    EXPECT_TRUE(appended.done);
    EXPECT_EQ(appended.target,
              joined({kOld, Bytes(data.begin() + 12, data.begin() + 16), Bytes(data.begin(), data.begin() + 3),
                      Bytes(data.begin() + 14, data.begin() + 18)}));
}

TEST(CcittAppend, MoreByteCountsThanStripsAreNoMatter) {
    const Appended appended = append(tiffWithTags({tiff::longs(273, {8}), tiff::longs(279, {4, 3, 4})}), 0, 0);
    EXPECT_TRUE(appended.done);
    EXPECT_EQ(appended.target->size(), kOld.size() + 4);
}

TEST(CcittAppend, AnImageWithoutStripsAppendsNothing) {
    const Appended appended = append(tiffWithTags({tiff::longs(273, {}), tiff::longs(279, {})}), 0, -10);
    EXPECT_TRUE(appended.done);
    EXPECT_EQ(appended.target, kOld);
}

// ---------------------------------------------------------------- the path that comes back

TEST(CcittAppendPath, IsTheLibrarysAndTheNextCallsToo) {
    const TempFile source(tiffWith(kStrips));
    const TempFile one(kOld);
    const TempFile two(kOld);
    char *first = AppendCCITTImageFile(one.path(), source.path(), 1, 0);
    ASSERT_STREQ(first, one.path());
    char *second = AppendCCITTImageFile(two.path(), source.path(), 1, 0);
    EXPECT_EQ(first, second) << "there is one buffer";
    EXPECT_STREQ(first, two.path());
    EXPECT_EQ(AppendCCITTImageFile(one.path(), "no such file", 1, 0), nullptr);
    EXPECT_STREQ(first, "") << "emptied by a call that fails at once";
}

TEST(CcittAppendPath, MayBeTheNextCallsTarget) {
    const TempFile source(tiffWith({{1, 2}}));
    const TempFile target(Bytes{0});
    char *path = AppendCCITTImageFile(target.path(), source.path(), 1, 0);
    ASSERT_NE(path, nullptr);
    path = AppendCCITTImageFile(path, source.path(), 1, 0);
    ASSERT_NE(path, nullptr);
    EXPECT_STREQ(path, target.path());
    EXPECT_EQ(readFile(target.path()), (Bytes{0, 1, 2, 1, 2}));
}

TEST(CcittAppendPath, MayBeTheNextCallsSource) {
    const TempFile source(tiffWith({{1, 2}}));
    const TempFile collected(tiffWith({{3, 4}}));
    const TempFile target(Bytes{0});
    char *path = AppendCCITTImageFile(collected.path(), source.path(), 1, 0);
    ASSERT_NE(path, nullptr);
    EXPECT_STREQ(AppendCCITTImageFile(target.path(), path, 1, 0), target.path());
    EXPECT_EQ(readFile(target.path()), (Bytes{0, 3, 4}));
}

// ---------------------------------------------------------------- calls that leave the target alone

TEST(CcittAppendRefused, WithoutASource) {
    const TempFile target(kOld);
    EXPECT_EQ(AppendCCITTImageFile(target.path(), nullptr, 0, 0), nullptr);
    EXPECT_EQ(AppendCCITTImageFile(target.path(), "", 0, 0), nullptr);
    EXPECT_EQ(AppendCCITTImageFile(target.path(), "no such file", 0, 0), nullptr);
    EXPECT_EQ(readFile(target.path()), kOld);
    expectUntouched(append({'I', 'I', 43, 0, 8, 0, 0, 0}, 0, 0));
    EXPECT_EQ(TiffError(), DWORD{VELLUM_NOT_TIFF});
}

TEST(CcittAppendRefused, WithoutTheImage) {
    expectUntouched(append(tiffWith(kStrips), 2, 0));
    expectUntouched(append(tiffWith(kStrips), 1000, 0));
    expectUntouched(append(tiffWith(kStrips), 0xFFFFFFFF, 0));
}

TEST(CcittAppendRefused, WithoutOneOfTheTags) {
    expectUntouched(append(tiffWithTags({tiff::longs(273, {8})}), 0, 0));
    EXPECT_EQ(TiffError(), DWORD{VELLUM_TAG_NOT_DEFINED});
    expectUntouched(append(tiffWithTags({tiff::longs(279, {4})}), 0, 0));
}

TEST(CcittAppendRefused, WithoutATargetNoFileIsMade) {
    const TempFile source(tiffWith(kStrips));
    const TempFile target;
    EXPECT_EQ(AppendCCITTImageFile(target.path(), source.path(), 1, 0), nullptr);
    EXPECT_EQ(GetFileAttributesA(target.path()), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(AppendCCITTImageFile(nullptr, source.path(), 1, 0), nullptr);
    EXPECT_EQ(AppendCCITTImageFile("", source.path(), 1, 0), nullptr);
    EXPECT_EQ(AppendCCITTImageFile(tempFolder().c_str(), source.path(), 1, 0), nullptr) << "a folder";
    EXPECT_NE(GetFileAttributesA(tempFolder().c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(AppendCCITTImageFile(std::string(300, 'a').c_str(), source.path(), 1, 0), nullptr);
}

TEST(CcittAppendRefused, BeforeTheStartOfTheTarget) {
    expectUntouched(append(tiffWith(kStrips), 1, -101));
    expectUntouched(append(tiffWith(kStrips), 1, -0x7FFFFFFF - 1));
}

TEST(CcittAppendRefused, OntoTheSourceItself) {
    const Bytes content = tiffWith(kStrips);
    const TempFile file(content);
    EXPECT_EQ(AppendCCITTImageFile(file.path(), file.path(), 1, 0), nullptr);
    std::string otherWay = file.path();
    otherWay.insert(otherWay.find_last_of("/\\"), "/.");
    EXPECT_EQ(AppendCCITTImageFile(otherWay.c_str(), file.path(), 1, 0), nullptr) << otherWay;
    EXPECT_EQ(AppendCCITTImageFile(file.path(), otherWay.c_str(), 1, -20), nullptr);
    EXPECT_TRUE(readFile(file.path()) == content);
}

// ---------------------------------------------------------------- calls that delete the target

TEST(CcittAppendHalfway, StripsBehindTheEndOfTheSourceAreReadErrors) {
    expectDeleted(append(tiffWithTags({tiff::longs(273, {8, 8}), tiff::longs(279, {4, 0x7FFFFFFF})}), 0, 0));
    expectDeleted(append(tiffWithTags({tiff::longs(273, {8, 8}), tiff::longs(279, {4, 0xFFFFFFFF})}), 0, 0));
    expectDeleted(append(tiffWithTags({tiff::longs(273, {8, 60000}), tiff::longs(279, {4, 1})}), 0, 0));
    for (const std::uint32_t offset : {0x80000000U, 0xFFFFFFFFU}) {
        expectDeleted(append(tiffWithTags({tiff::longs(273, {offset}), tiff::longs(279, {4})}), 0, 0));
    }
}

// A small file whose strips all share its bytes is not to fill the disk.
TEST(CcittAppend, RefusesStripsThatShareTheirBytesWithoutEnd) {
    const Bytes data(100000, 0x55);
    tiff::Builder builder;
    builder.append(data);
    builder.directory({tiff::shorts(256, {8}), tiff::shorts(257, {1}),
                       tiff::longs(273, std::vector<std::uint32_t>(400, 8)),
                       tiff::longs(279, std::vector<std::uint32_t>(400, 100000))});
    const TempFile source(builder.bytes());
    const TempFile target(Bytes{1, 2, 3});
    EXPECT_EQ(AppendCCITTImageFile(target.path(), source.path(), 0, 0), nullptr);
    EXPECT_EQ(readFile(target.path()), (Bytes{1, 2, 3}));
}

TEST(CcittAppendHalfway, FewerByteCountsThanStripsAreReadErrors) {
    expectDeleted(append(tiffWithTags({tiff::longs(273, {8, 9, 10}), tiff::longs(279, {1, 1})}), 0, 0));
    expectDeleted(append(tiffWithTags({tiff::longs(273, {8, 9}), tiff::longs(279, {1})}), 0, 0));
}

// By design: strip tags count as 32-bit values whatever their type says. A single SHORT is stored in 4 bytes, so it is
// what it says; two are one number.
TEST(CcittAppendShorts, AreReadAs32BitValues) {
    const Bytes data = noise(50, 5);
    const Appended single = append(tiffWithTags({tiff::shorts(273, {10}), tiff::shorts(279, {6})}), 0, 0);
    EXPECT_TRUE(single.done);
    EXPECT_EQ(single.target, joined({kOld, Bytes(data.begin() + 2, data.begin() + 8)}));
    expectDeleted(append(tiffWithTags({tiff::shorts(273, {10, 12}), tiff::longs(279, {1, 1})}), 0, 0));
    // 0x00000009 and 0x0000000C: two strips out of four numbers, and then no more.
    expectDeleted(append(tiffWithTags({tiff::shorts(273, {9, 0, 12, 0}), tiff::longs(279, {1, 1, 1, 1})}), 0, 0));
    const Appended counts = append(tiffWithTags({tiff::longs(273, {9, 12}), tiff::shorts(279, {2, 0, 3, 0})}), 0, 0);
    EXPECT_TRUE(counts.done);
    EXPECT_EQ(counts.target,
              joined({kOld, Bytes(data.begin() + 1, data.begin() + 3), Bytes(data.begin() + 4, data.begin() + 7)}));
}

// ---------------------------------------------------------------- system calls that fail

// What becomes of the target when the n-th call of a kind fails.
struct Effect {
    bool happened = false;
    Appended appended;
};

Effect appendWithFault(Call call, long nth) {
    const TempFile source(tiffWith({noise(70000, 7), noise(10, 8)}));
    const TempFile target(kOld);
    Effect effect;
    {
        const FailNth fault(call, nth);
        effect.appended.done = AppendCCITTImageFile(target.path(), source.path(), 1, 0) != nullptr;
        effect.happened = fault.happened();
    }
    effect.appended.target = readFile(target.path());
    return effect;
}

// Fails every call of a kind in turn. Result: what happened, a letter a call: untouched, deleted, or success.
std::string effects(Call call) {
    std::string letters;
    for (long nth = 0; nth < 100; ++nth) {
        const Effect effect = appendWithFault(call, nth);
        if (!effect.happened) {
            EXPECT_TRUE(effect.appended.done);
            EXPECT_TRUE(effect.appended.target == joined({kOld, noise(70000, 7), noise(10, 8)}));
            return letters;
        }
        if (effect.appended.done) {
            letters += 's';
        } else if (effect.appended.target == kOld) {
            letters += 'u';
        } else {
            EXPECT_FALSE(effect.appended.target) << "half an image is left behind, call " << nth;
            letters += 'd';
        }
    }
    return letters;
}

// The last so many of the letters, which are those of the copy; before them only untouched targets.
void expectEffects(Call call, const std::string &ofTheCopy) {
    const std::string all = effects(call);
    ASSERT_GT(all.size(), ofTheCopy.size());
    const std::size_t before = all.size() - ofTheCopy.size();
    EXPECT_EQ(all.substr(before), ofTheCopy) << all;
    EXPECT_EQ(all.substr(0, before).find('d'), std::string::npos) << all;
}

TEST(CcittAppendFaults, EveryReadInTurn) {
    expectEffects(Call::Read, "ddd"); // two pieces and a short strip
}

TEST(CcittAppendFaults, EveryWriteInTurn) {
    EXPECT_EQ(effects(Call::Write), "ddd");
}

TEST(CcittAppendFaults, EverySeekInTurn) {
    expectEffects(Call::Seek, "udd"); // to the target's end, to each strip
}

TEST(CcittAppendFaults, EveryOpenInTurn) {
    expectEffects(Call::Open, "uu"); // the source once more, the target
}

TEST(CcittAppendFaults, EveryAllocationInTurn) {
    expectEffects(Call::Allocate, "uud"); // the two tags, the buffer
}

} // namespace
