// The manifest of the sample collection: one JSON object a line, as the collection's own README describes it.
#pragma once

#include "support/json.h"
#include "support/paths.h"

#include <fstream>
#include <string>
#include <vector>

namespace vellum::test {

struct Sample {
    std::string file;
    std::string kind;
    Json entry;

    [[nodiscard]] std::string path() const { return sample(file); }
    [[nodiscard]] const std::vector<Json> &pages() const { return entry["pages"].items; }
};

// All samples of some kinds, in the manifest's order.
inline std::vector<Sample> samplesOfKind(const std::vector<std::string> &kinds) {
    std::vector<Sample> samples;
    std::ifstream manifest(sample("manifest.jsonl"));
    for (std::string line; std::getline(manifest, line);) {
        Json entry = JsonReader::read(line);
        for (const std::string &kind : kinds) {
            if (entry["kind"].text == kind) {
                samples.push_back({entry["file"].text, kind, entry});
            }
        }
    }
    return samples;
}

} // namespace vellum::test
