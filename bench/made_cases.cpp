#include "bench/made_cases.h"

namespace bench {
namespace {

struct Layout {
    const char *name;
    unsigned rowsPerStrip;
};

constexpr Layout kLayouts[] = {{"one-strip", 0xFFFFFFFF}, {"64-line-strips", 64}, {"strip-per-line", 1}};
constexpr Codec kBilevelCodecs[] = {Codec::Group4,
                                    Codec::Group3OneDimensional,
                                    Codec::Group3TwoDimensional,
                                    Codec::ModifiedHuffman,
                                    Codec::PackBits,
                                    Codec::Lzw,
                                    Codec::None};
constexpr Codec kSampledCodecs[] = {Codec::PackBits, Codec::Lzw, Codec::LzwDifferencing, Codec::None};

void appendCases(std::vector<MadeCase> &cases, Codec codec, bool bilevel) {
    for (const std::string &page : pageNames()) {
        // Uncompressed bytes are the same work whatever they show.
        const bool repeats = codec == Codec::None && bilevel && page.find("text-dense") == std::string::npos;
        if (isBilevel(page) != bilevel || repeats) {
            continue;
        }
        for (const Layout &layout : kLayouts) {
            const std::string name = std::string(codecName(codec)) + "/" + page + "/" + layout.name;
            cases.push_back({name, codec, page, layout.rowsPerStrip});
        }
    }
}

} // namespace

std::vector<MadeCase> madeCases() {
    std::vector<MadeCase> cases;
    for (const Codec codec : kBilevelCodecs) {
        appendCases(cases, codec, true);
    }
    for (const Codec codec : kSampledCodecs) {
        appendCases(cases, codec, false);
    }
    return cases;
}

} // namespace bench
