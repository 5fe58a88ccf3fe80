// The line coders, with everything that changes in registers.
#include "codec/ccitt_encode_lines.h"

namespace vellum {
namespace {

constexpr unsigned kWhite = 0;
constexpr unsigned kBlack = 1;

// One run of any length. Makes no room behind its last word.
inline void putRun(CodeWriter &writer, CodeWindow &window, unsigned colour, LONG length) {
    while (length > kLongestMakeUp)
        [[unlikely]] {
            window.put(kLongestMakeUpWord);
            writer.makeRoom(window);
            length -= kLongestMakeUp;
        }
    window.put(kRunWords[colour][static_cast<DWORD>(length)]);
}

} // namespace

void encodeOneDimensionalLine(CodeWriter &writer, const LineRuns &line) {
    const LONG width = line.width();
    const LONG *next = line.positions();
    CodeWindow window = writer.window();
    LONG position = 0;
    do {
        putRun(writer, window, kWhite, next[0] - position);
        if (next[0] == width) {
            break;
        }
        putRun(writer, window, kBlack, next[1] - next[0]);
        writer.makeRoom(window);
        position = next[1];
        next += 2;
    } while (position < width);
    writer.makeRoom(window);
    writer.resume(window);
}

void encodeTwoDimensionalLine(CodeWriter &writer, const LineRuns &reference, const LineRuns &line) {
    const LONG width = line.width();
    const LONG *a1 = line.positions();
    const LONG *const first = a1;
    const LONG *b1 = reference.positions();
    CodeWindow window = writer.window();
    LONG a0 = 0; // the start of the line counts as a changing element of its own: b1 may lie there
    do {
        writer.makeRoom(window);
        if (b1[1] < *a1) {
            window.put(kPassCodeWord);
            a0 = b1[1];
            b1 += 2;
            continue;
        }
        const auto vertical = static_cast<DWORD>(*a1 - *b1 + kFarthestVertical);
        if (vertical < kVerticalCodeWords.size()) {
            window.put(kVerticalCodeWords[vertical]);
            a0 = *a1++;
            // The next b1 has the other colour; it lies before the old one only if that is right of a0.
            b1 += b1[-1] > a0 ? -1 : 1;
        } else {
            const auto colour = static_cast<unsigned>(a1 - first) & 1;
            window.put(kHorizontalCodeWord);
            putRun(writer, window, colour, a1[0] - a0);
            putRun(writer, window, colour ^ 1, a1[1] - a1[0]);
            a0 = a1[1];
            a1 += 2;
        }
        while (*b1 <= a0 && a0 < width) {
            b1 += 2;
        }
    } while (a0 < width);
    writer.makeRoom(window);
    writer.resume(window);
}

} // namespace vellum
