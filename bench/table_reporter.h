// Prints the comparisons as a table, line by line while they are made, and a summary per codec at the end.
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace bench {

class TableReporter : public benchmark::BenchmarkReporter {
public:
    // pageColumn: the width of the column of page names.
    explicit TableReporter(int pageColumn) : pageColumn_(pageColumn) {}

    bool ReportContext(const Context &context) override;
    void ReportRuns(const std::vector<Run> &runs) override;
    void Finalize() override;

    // Measurements that could not be made because a library refused the image or delivered another picture.
    [[nodiscard]] int failures() const { return static_cast<int>(failed_.size()); }

private:
    struct Case {
        std::string name;
        double ratio;
    };
    int pageColumn_;
    std::map<std::string, std::vector<Case>> byCodec_;
    std::vector<std::string> failed_;
};

} // namespace bench
