// A console reporter that also keeps the real time per iteration (seconds) of
// every benchmark it reports, by name, and prints ratios of pairs of them at
// the end: "numerator/denominator" tells how many times longer the first took.
// Pairs whose benchmarks did not run (filtered out, failed) are left out.
#pragma once

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <map>
#include <string>
#include <utility>
#include <vector>

// numerator / denominator, divided by `divisor` (e.g. the ratio of the pixel
// counts, to read a 4K result against a 2K one per pixel); `note` is printed after.
struct RatioPair {
    RatioPair(std::string top, std::string bottom, double by = 1.0, std::string text = "")
        : numerator(std::move(top)),
          denominator(std::move(bottom)),
          divisor(by),
          note(std::move(text)) {}
    std::string numerator;
    std::string denominator;
    double divisor;
    std::string note;
};

class RatioReporter : public benchmark::ConsoleReporter {
  public:
    // Colours only for a terminal.
    explicit RatioReporter(bool colour) : ConsoleReporter(colour ? OO_Defaults : OO_Tabular) {}

    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.error_occurred || run.iterations == 0) continue;
            const double seconds = run.real_accumulated_time / static_cast<double>(run.iterations);
            const std::string& name = run.run_name.function_name;
            if (run.run_type == Run::RT_Iteration) {
                Sum& sum = sums_[name];
                sum.seconds += seconds;
                ++sum.runs;
            } else if (run.aggregate_name == "median" && run.aggregate_unit == benchmark::kTime) {
                medians_[name] = seconds;
            }
        }
    }

    // Seconds per iteration: the median of repetitions when there were any,
    // else the mean of the runs; NaN when the benchmark did not run.
    double seconds(const std::string& name) const {
        const auto median = medians_.find(name);
        if (median != medians_.end()) return median->second;
        const auto found = sums_.find(name);
        if (found == sums_.end()) return std::nan("");
        return found->second.seconds / found->second.runs;
    }

    void printRatios(const std::vector<RatioPair>& pairs, FILE* out = stdout) const {
        bool heading = false;
        for (const RatioPair& pair : pairs) {
            const double top = seconds(pair.numerator);
            const double bottom = seconds(pair.denominator);
            if (std::isnan(top) || std::isnan(bottom) || bottom <= 0.0) continue;
            if (!heading) {
                fprintf(out, "\nRatios of real time per iteration\n");
                heading = true;
            }
            fprintf(out, "%8.2f  %s (%.2f ms) / %s (%.2f ms)%s%s\n", top / bottom / pair.divisor,
                    pair.numerator.c_str(), top * kMillisecondsPerSecond, pair.denominator.c_str(),
                    bottom * kMillisecondsPerSecond, pair.note.empty() ? "" : "  ",
                    pair.note.c_str());
        }
        fflush(out);
    }

  private:
    static constexpr double kMillisecondsPerSecond = 1000.0;

    struct Sum {
        double seconds = 0.0;
        int runs = 0;
    };
    std::map<std::string, Sum> sums_;
    std::map<std::string, double> medians_;
};
