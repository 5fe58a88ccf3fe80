// Any bytes as the tag of a note. What a note has to be is in note_tag_input.h; inputs worth keeping are in
// tests/corpus/note_tags.
#include "fuzz/note_tag_input.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string value(data, data + size);
    if (const char *complaint = vellum::test::complaintAboutNoteTag(value); complaint != nullptr) {
        std::fprintf(stderr, "%s\n", complaint);
        std::abort();
    }
    return 0;
}
