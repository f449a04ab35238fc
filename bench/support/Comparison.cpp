#include "support/Comparison.hpp"

#include "support/allocations.hpp"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string_view>

namespace quorvale::bench {

namespace {

/// The shortest time of each benchmark in nanoseconds: what disturbs a run only ever makes it longer.
class ShortestTimes : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& context) override {
        PrintBasicContext(&GetErrorStream(), context);
        return true;
    }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const auto& run : runs) {
            if (run.run_type == Run::RT_Iteration && !run.error_occurred) {
                const auto time = run.GetAdjustedCPUTime();
                const auto [place, isFirst] = times_.emplace(run.run_name.function_name, time);
                place->second = std::min(place->second, time);
            }
        }
    }

    [[nodiscard]] std::optional<double> of(const std::string& name) const {
        const auto time = times_.find(name);
        return time == times_.end() ? std::nullopt : std::optional(time->second);
    }

private:
    std::map<std::string, double> times_;
};

std::string oursOf(const Comparison& comparison) {
    return comparison.what + " (ours)";
}

std::string baselineOf(const Comparison& comparison) {
    return comparison.what + " (" + comparison.baselineName + ")";
}

void add(const std::string& name, const Comparison::Operation& operation) {
    benchmark::RegisterBenchmark(name.c_str(), [&operation](benchmark::State& state) {
        for ([[maybe_unused]] auto iteration : state) {
            operation();
        }
    });
}

std::size_t allocationsOf(const Comparison::Operation& operation) {
    operation();
    operation();
    const auto before = allocations();
    operation();
    return allocations() - before;
}

/// Prints the comparison's line; whether all that is demanded is met.
bool report(const Comparison& comparison, double ours, double baseline) {
    const auto ratio = ours / baseline;
    const auto throughput = static_cast<double>(comparison.bytes) / ours;
    const auto allocations = allocationsOf(comparison.ours);
    const auto freeAllocations =
        comparison.allocations == Comparison::Allocations::Free ? allocations : allocationsOf(comparison.baseline);
    const bool isMet = (!comparison.timeLimit || ratio <= *comparison.timeLimit) &&
                       (!comparison.longest || ours <= static_cast<double>(comparison.longest->count())) &&
                       (!comparison.throughputGoal || throughput >= *comparison.throughputGoal) &&
                       allocations <= freeAllocations;
    std::string goal;
    const auto demand = [&goal](const auto& value, const char* form) {
        if (value) {
            char text[32];
            std::snprintf(text, sizeof text, form, *value);
            goal += (goal.empty() ? "" : ", ") + std::string(text);
        }
    };
    demand(comparison.timeLimit, "time <= %.2f");
    if (comparison.longest) {
        demand(std::optional(std::chrono::duration<double, std::milli>(*comparison.longest).count()), "ms <= %g");
    }
    demand(comparison.throughputGoal, "GB/s >= %.1f");
    if (comparison.allocations == Comparison::Allocations::AsTheBaseline) {
        demand(std::optional(freeAllocations), "new <= %zu");
    }
    std::printf("%-34s %13.1f %7.2f %4zu  %-36s %13.1f %7.2f  %-24s %s\n", comparison.what.c_str(), ours, throughput,
                allocations, comparison.baselineName.c_str(), baseline, ratio, goal.c_str(),
                goal.empty() ? ""
                : isMet      ? "met"
                             : "MISSED");
    return isMet;
}

} // namespace

int run(int argc, char** argv, const std::vector<Comparison>& comparisons) {
    // By turns, so that both sides of a comparison see the same machine.
    char repetitions[] = "--benchmark_repetitions=9";
    char interleaving[] = "--benchmark_enable_random_interleaving=true";
    char shortest[] = "--benchmark_min_time=0.05";
    std::vector<char*> arguments{argv[0], repetitions, interleaving, shortest};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    auto count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) {
        return 2;
    }
    for (const auto& comparison : comparisons) {
        add(oursOf(comparison), comparison.ours);
        add(baselineOf(comparison), comparison.baseline);
    }
    ShortestTimes times;
    benchmark::RunSpecifiedBenchmarks(&times);
    benchmark::Shutdown();

    std::printf("%-34s %13s %7s %4s  %-36s %13s %7s  %s\n", "", "ours, ns", "GB/s", "new", "baseline", "ns", "ratio",
                "demanded");
    bool allMet = true;
    for (const auto& comparison : comparisons) {
        const auto ours = times.of(oursOf(comparison));
        const auto baseline = times.of(baselineOf(comparison));
        if (ours && baseline) {
            allMet = report(comparison, *ours, *baseline) && allMet;
        }
    }
    return allMet ? 0 : 1;
}

} // namespace quorvale::bench
