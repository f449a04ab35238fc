#include "support/Figures.hpp"

#include <algorithm>
#include <cstdio>

namespace quorvale::bench {

namespace {

double median(std::vector<double> samples) {
    const auto middle = samples.begin() + static_cast<std::ptrdiff_t>(samples.size() / 2);
    std::ranges::nth_element(samples, middle);
    return *middle;
}

} // namespace

void sampleByTurns(std::size_t count, Figure& figure, const std::function<double()>& ours,
                   const std::function<double()>& baseline) {
    for (std::size_t turn = 0; turn < count; ++turn) {
        if (turn % 2 == 0) {
            figure.ours.push_back(ours());
        }
        figure.baseline.push_back(baseline());
        if (turn % 2 == 1) {
            figure.ours.push_back(ours());
        }
    }
}

bool print(const std::vector<Figure>& figures) {
    std::printf("%-40s %10s %10s  %-30s %10s %10s %7s  %s\n", "", "ours", "worst", "baseline", "median", "worst",
                "ratio", "demanded");
    bool allMet = true;
    for (const auto& figure : figures) {
        // Where much is demanded the worst is the least.
        const auto worst = [&](const std::vector<double>& samples) {
            return figure.least ? std::ranges::min(samples) : std::ranges::max(samples);
        };
        const auto ours = median(figure.ours);
        const auto baseline = median(figure.baseline);
        const auto ratio = ours / baseline;
        const auto isMet = (!figure.least || ratio >= *figure.least) && (!figure.most || ratio <= *figure.most) &&
                           (!figure.mostOfOurs || ours <= *figure.mostOfOurs);
        std::string demand;
        const auto add = [&demand](const char* form, const std::optional<double>& value) {
            if (value) {
                char text[32];
                std::snprintf(text, sizeof text, form, *value);
                demand += text;
            }
        };
        add("ratio >= %.2f ", figure.least);
        add("ratio <= %.2f ", figure.most);
        add("ours <= %.1f ", figure.mostOfOurs);
        if (!demand.empty()) {
            demand += isMet ? "met" : "MISSED";
        }
        std::printf("%-40s %10.1f %10.1f  %-30s %10.1f %10.1f %7.2f  %s\n", figure.what.c_str(), ours,
                    worst(figure.ours), figure.baselineName.c_str(), baseline, worst(figure.baseline), ratio,
                    demand.c_str());
        allMet = allMet && isMet;
    }
    return allMet;
}

} // namespace quorvale::bench
