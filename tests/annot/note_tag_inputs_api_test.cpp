// Note tags that are kept because of what is odd about them, and values like them with a few bytes changed.
#include "fuzz/note_tag_input.h"
#include "support/paths.h"
#include "support/random_pictures.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using namespace vellum::test;

std::vector<std::string> keptValues() {
    std::vector<std::string> values;
    for (const auto &entry : std::filesystem::directory_iterator(fixture("note_tags"))) {
        const auto bytes = readFile(entry.path().string());
        EXPECT_TRUE(bytes) << entry.path();
        values.emplace_back(bytes->begin(), bytes->end());
    }
    return values;
}

// Changes, adds or takes away some bytes, with a liking for those that mean something.
std::string changed(std::string value, Random &random) {
    constexpr std::string_view kTelling("~,OT0129-\0\xFF", 11);
    for (std::uint32_t times = 1 + random.below(4); times > 0; --times) {
        const std::size_t at = random.below(static_cast<std::uint32_t>(value.size()) + 1);
        const char byte =
            random.below(3) == 0 ? static_cast<char>(random.below(256)) : kTelling[random.below(kTelling.size())];
        switch (random.below(4)) {
        case 0:
            value.resize(at);
            break;
        case 1:
            value.erase(at, 1);
            break;
        case 2:
            value.insert(at, 1 + random.below(2) * random.below(20), byte);
            break;
        default:
            if (at < value.size()) {
                value[at] = byte;
            }
            break;
        }
    }
    return value;
}

TEST(NoteTagInputs, TheKeptOnesAreReadAsTheyAre) {
    const std::vector<std::string> values = keptValues();
    EXPECT_GE(values.size(), 15U);
    for (const std::string &value : values) {
        EXPECT_STREQ(complaintAboutNoteTag(value), nullptr) << testing::PrintToString(value);
    }
}

TEST(NoteTagInputs, AnyChangedOnesAreReadAsTheyAre) {
    const std::vector<std::string> values = keptValues();
    Random random(316);
    int notes = 0;
    for (int i = 0; i < 4000; ++i) {
        const std::string value = changed(values[static_cast<std::size_t>(i) % values.size()], random);
        ASSERT_STREQ(complaintAboutNoteTag(value), nullptr) << i << ": " << testing::PrintToString(value);
        notes += PlainNote(value).text ? 1 : 0;
    }
    EXPECT_GT(notes, 1000);
    EXPECT_LT(notes, 3500);
}

} // namespace
