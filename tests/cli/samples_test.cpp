// vellum check over the whole sample collection: it reaches the end, and its verdicts are those of the manifest.
#include "cli/vellum_process.h"
#include "support/json.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>

namespace vellum::test {
namespace {

std::string absolute(const std::string &path) {
    char full[MAX_PATH] = {};
    return GetFullPathNameA(path.c_str(), sizeof full, full, nullptr) > 0 ? full : path;
}

struct Verdict {
    bool ok = false;
    std::string reason;
};

// The verdicts of a run by file and page, page 0 standing for the file.
std::map<std::pair<std::string, unsigned long>, Verdict> verdicts(const std::string &output, const std::string &root) {
    std::map<std::pair<std::string, unsigned long>, Verdict> result;
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
        const bool ok = line.starts_with("ok      ");
        if (!ok && !line.starts_with("FAILED  ")) {
            continue;
        }
        std::string rest = line.substr(8 + root.size() + 1);
        const std::size_t nameEnd = rest.find(": ");
        std::string name = rest.substr(0, nameEnd);
        rest.erase(0, nameEnd == std::string::npos ? rest.size() : nameEnd + 2);
        unsigned long page = 0;
        if (rest.starts_with("page ")) {
            page = std::stoul(rest.substr(5));
            const std::size_t reason = rest.find(": ");
            rest.erase(0, reason == std::string::npos ? rest.size() : reason + 2);
        }
        for (char &c : name) {
            c = c == '\\' ? '/' : c;
        }
        result[{name, page}] = {ok, rest};
    }
    return result;
}

TEST(Samples, EveryVerdictAgreesWithTheManifest) {
    SKIP_WITHOUT_SAMPLES();
    const std::string root = absolute(sample(""));
    const std::string folder = root.substr(0, root.find_last_not_of("\\/") + 1);
    const Outcome outcome = WorkFolder().run({"check", folder + "\\tiff", folder + "\\malformed"});
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 1U);
    const auto found = verdicts(outcome.out, folder);

    const auto manifest = readFile(sample("manifest.jsonl"));
    ASSERT_TRUE(manifest);
    std::istringstream lines(std::string(manifest->begin(), manifest->end()));
    int files = 0;
    int wholePages = 0;
    for (std::string line; std::getline(lines, line);) {
        const Json entry = JsonReader::read(line);
        const std::string file = entry["file"].text;
        if (entry["kind"].text != "tiff" && entry["kind"].text != "malformed") {
            continue;
        }
        ++files;
        const bool told = found.contains({file, 0}) || found.contains({file, 1});
        EXPECT_TRUE(told) << file << " has no verdict";
        if (entry["expected"]["open"].text == "fails") {
            EXPECT_TRUE(found.contains({file, 0}) && !found.at({file, 0}).ok) << file;
            continue;
        }
        for (const Json &page : entry["pages"].items) {
            const auto verdict = found.find({file, page["page"].whole() + 1});
            if (page["golden"].isTrue()) {
                ++wholePages;
                EXPECT_TRUE(verdict != found.end() && verdict->second.ok) << file << " page " << page["page"].whole();
            } else if (page["supported"].kind == Json::Kind::Bool && !page["supported"].isTrue()) {
                EXPECT_TRUE(verdict == found.end() || !verdict->second.ok) << file << " page " << page["page"].whole();
            }
        }
    }
    EXPECT_GT(files, 300);
    EXPECT_GT(wholePages, 250);
}

} // namespace
} // namespace vellum::test
