#include "logs/SampleLog.hpp"
#include "support/Comparison.hpp"
#include "ui/logs/EntryView.hpp"

#include <QApplication>
#include <QPixmap>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace quorvale::bench {

namespace {

using namespace std::chrono_literals;
using ui::logs::EntryView;

constexpr QSize viewSize(680, 400);
constexpr auto baselineName = "QPlainTextEdit, the same text";

Comparison writing() {
    // What the calling thread spends, with the hand-over to an output that is at work meanwhile.
    const auto log =
        std::make_shared<platform::log::UnifiedLog>(platform::log::lineOutput(::open("/dev/null", O_WRONLY)));
    const auto logger = std::make_shared<platform::log::Logger>("com.quorvale.QuorvaleHelper", "default", *log);
    const std::string argument = "Connection to the agent was interrupted";
    return {.what = "write an entry",
            .bytes = argument.size(),
            .ours = [log, logger, argument] { logger->info("Helper XPC: %{public}s, %{bool}d", argument, true); },
            .baselineName = "snprintf, with the time",
            .baseline =
                [argument] {
                    char text[128];
                    const auto now = std::chrono::system_clock::now();
                    std::snprintf(text, sizeof text, "Helper XPC: %s, %s", argument.c_str(), "true");
                    benchmark::DoNotOptimize(now);
                    benchmark::DoNotOptimize(text);
                },
            .longest = 500ns};
}

EntryView::Items itemsOf(const SampleLog& log) {
    return {std::shared_ptr<const std::string>(log.lines.entries(), &log.lines.entries()->text())};
}

/// A view that is scrolled to one place after another, the same ones at each run.
template <typename View>
struct Scrolled {
    template <typename Text>
    explicit Scrolled(const Text& text) : view(text) {
        view.resize(viewSize);
        view.grab();
    }

    View view;
    std::mt19937 random{1};

    void scroll() {
        auto& bar = *view.verticalScrollBar();
        bar.setValue(std::uniform_int_distribution(bar.minimum(), bar.maximum())(random));
        benchmark::DoNotOptimize(view.grab());
    }
};

void add(std::vector<Comparison>& all, std::size_t count) {
    const auto log = std::make_shared<SampleLog>(count);
    log->lines.loadEntries();
    const auto text = std::make_shared<const QString>(QString::fromStdString(log->lines.entries()->text()));
    const auto bytes = log->lines.entries()->text().size();
    const auto name = [count](const std::string& what) { return what + " of " + std::to_string(count) + " lines"; };
    const auto isMost = count == 1'000'000;
    using Limit = std::optional<std::chrono::nanoseconds>;

    all.push_back({.what = name("loadEntries"),
                   .bytes = bytes,
                   .ours = [log] { log->lines.loadEntries(); },
                   .baselineName = "one copy of the joined text",
                   .baseline = [log] { benchmark::DoNotOptimize(std::string(log->lines.entries()->text())); },
                   .longest = isMost ? Limit(150ms) : std::nullopt});

    all.push_back({.what = name("first paint"),
                   .bytes = bytes,
                   .ours =
                       [log] {
                           EntryView view(itemsOf(*log));
                           view.resize(viewSize);
                           benchmark::DoNotOptimize(view.grab());
                       },
                   .baselineName = baselineName,
                   .baseline =
                       [text] {
                           QPlainTextEdit view(*text);
                           view.resize(viewSize);
                           benchmark::DoNotOptimize(view.grab());
                       },
                   .longest = isMost ? Limit(50ms) : std::nullopt});

    const auto ours = std::make_shared<Scrolled<EntryView>>(itemsOf(*log));
    const auto theirs = std::make_shared<Scrolled<QPlainTextEdit>>(*text);
    all.push_back({.what = name("scroll step"),
                   .bytes = bytes,
                   .ours = [ours] { ours->scroll(); },
                   .baselineName = baselineName,
                   .baseline = [theirs] { theirs->scroll(); },
                   .longest = 8ms});
}

std::vector<Comparison> comparisons() {
    std::vector<Comparison> all{writing()};
    for (const std::size_t count : {10'000UL, 100'000UL, 1'000'000UL}) {
        add(all, count);
    }
    return all;
}

} // namespace

} // namespace quorvale::bench

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    return quorvale::bench::run(argc, argv, quorvale::bench::comparisons());
}
