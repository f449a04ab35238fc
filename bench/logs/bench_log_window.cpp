#include "logs/SampleLog.hpp"
#include "ui/logs/EntryView.hpp"
#include "ui/logs/LogViewer.hpp"

#include <QApplication>
#include <QClipboard>
#include <QPixmap>
#include <QPlainTextEdit>
#include <QProcess>
#include <QTemporaryDir>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <vector>

namespace quorvale::bench {

namespace {

using ui::logs::TextSearch;

constexpr QSize windowSize(720, 480);

/// What a closed window may leave behind: fonts, glyphs and the toolkit's own. Mebibytes.
constexpr double keptByView = 4;

/// What showing a log took. Milliseconds, and mebibytes beyond what the process had before.
struct Cost {
    double load = 0;
    double firstPaint = 0;
    double loaded = 0; ///< before there is a view
    double shown = 0;
    double find = 0;             ///< all matches of a text that isn't there, so that all is looked through
    double findIgnoringCase = 0; ///< the same
    double copy = 0;             ///< of everything, with selecting it
    double closed = 0;
};

constexpr auto wanted = "Saturday";

/// Mebibytes that a line of a file of /proc about this process tells.
double memoryIn(const char* file, std::string_view field) {
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(field)) {
            return std::strtod(line.c_str() + field.size(), nullptr) / 1024;
        }
    }
    std::abort();
}

double memory() {
    return memoryIn("/proc/self/smaps_rollup", "Anonymous:");
}

double milliseconds(const std::function<void()>& operation) {
    const auto start = std::chrono::steady_clock::now();
    operation();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

void expectNothing(std::size_t matches) {
    if (matches != 0) {
        std::abort();
    }
}

Cost ours(std::size_t count) {
    platform::queue::MainQueue mainQueue;
    SampleLog log(count);
    Cost cost;
    const auto before = memory();
    cost.load = milliseconds([&] { log.lines.loadEntries(); });
    cost.loaded = memory() - before;
    std::unique_ptr<ui::logs::LogViewer> window;
    cost.firstPaint = milliseconds([&] {
        window = std::make_unique<ui::logs::LogViewer>(log.lines, mainQueue, [] {});
        window->resize(windowSize);
        window->grab();
    });
    // Shown in earnest, it reads the log once more.
    const auto first = log.lines.entries().get();
    window->show();
    while (log.lines.entries().get() == first) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    QCoreApplication::processEvents();
    window->grab();
    cost.shown = memory() - before;
    auto& view = *window->findChild<ui::logs::EntryView*>();
    const auto find = [&](TextSearch::Case letters) {
        return milliseconds([&] { expectNothing(TextSearch(wanted, letters).count(view.segments().text())); });
    };
    cost.find = find(TextSearch::Case::Matched);
    cost.findIgnoringCase = find(TextSearch::Case::Ignored);
    cost.copy = milliseconds([&] {
        view.select(0, view.segments().text().size());
        view.copy();
    });
    QApplication::clipboard()->clear();
    window.reset();
    cost.closed = memory() - before;
    return cost;
}

QString textOf(std::size_t count) {
    SampleLog log(count);
    log.lines.loadEntries();
    return QString::fromStdString(log.lines.entries()->text());
}

Cost plainTextEdit(std::size_t count) {
    const auto text = textOf(count);
    Cost cost;
    const auto before = memory();
    auto window = std::make_unique<QPlainTextEdit>();
    window->resize(windowSize);
    cost.load = milliseconds([&] { window->setPlainText(text); });
    cost.firstPaint = milliseconds([&] { window->grab(); });
    window->show();
    QCoreApplication::processEvents();
    cost.shown = memory() - before;
    const auto find = [&](QTextDocument::FindFlags flags) {
        return milliseconds([&] { expectNothing(window->find(QString::fromLatin1(wanted), flags) ? 1 : 0); });
    };
    cost.find = find(QTextDocument::FindCaseSensitively);
    cost.findIgnoringCase = find({});
    cost.copy = milliseconds([&] {
        window->selectAll();
        window->copy();
    });
    QApplication::clipboard()->clear();
    window.reset();
    cost.closed = memory() - before;
    return cost;
}

/// Each measurement has a process of its own, so that none has another's memory.
std::optional<Cost> measureApart(const QString& side, std::size_t count) {
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QCoreApplication::applicationFilePath(), {side, QString::number(count)});
    process.waitForFinished(-1);
    const auto fields = process.readAllStandardOutput().split(' ');
    if (process.exitStatus() != QProcess::NormalExit || fields.size() != 8) {
        return std::nullopt;
    }
    const auto field = [&](int index) { return fields[index].toDouble(); };
    return Cost{field(0), field(1), field(2), field(3), field(4), field(5), field(6), field(7)};
}

/// lnav writes the lines of a file, as it does without a terminal.
std::optional<Cost> lnav(std::size_t count) {
    const QTemporaryDir folder;
    const auto file = folder.filePath(QStringLiteral("sample.log"));
    std::ofstream(file.toStdString()) << textOf(count).toStdString() << '\n';
    QProcess process;
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), folder.path());
    process.setProcessEnvironment(environment);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    const auto time = milliseconds([&] {
        process.start(QStringLiteral("lnav"), {QStringLiteral("-n"), file});
        process.waitForFinished(-1);
    });
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        return std::nullopt;
    }
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    return Cost{.load = time, .shown = static_cast<double>(usage.ru_maxrss) / 1024};
}

void print(std::size_t count, const char* what, const std::optional<Cost>& cost, const char* demanded = "") {
    if (cost) {
        std::printf("%9zu  %-16s %10.1f %12.1f %12.0f %11.1f %10.1f %11.1f %9.1f %9.1f %9.1f  %s\n", count, what,
                    cost->load, cost->firstPaint, 1e6 * (cost->load + cost->firstPaint) / static_cast<double>(count),
                    cost->loaded, cost->shown, cost->closed, cost->find, cost->findIgnoringCase, cost->copy, demanded);
    } else {
        std::printf("%9zu  %-16s failed\n", count, what);
    }
}

int compareAll() {
    std::printf("%9s  %-16s %10s %12s %12s %11s %10s %11s %9s %9s %9s  %s\n", "lines", "", "load, ms", "paint, ms",
                "ns per line", "loaded, MiB", "shown, MiB", "closed, MiB", "find, ms", "any case", "copy, ms",
                "demanded of ours");
    bool allMet = true;
    for (const std::size_t count : {10'000UL, 100'000UL, 1'000'000UL}) {
        // First, because a child's share of the memory is that of the largest child so far.
        const auto reader = lnav(count);
        const auto cost = measureApart(QStringLiteral("ours"), count);
        const auto isMost = count == 1'000'000;
        const auto isMet = cost && (!isMost || (cost->load <= 150 && cost->firstPaint <= 50 && cost->shown <= 250 &&
                                                cost->find <= 50 && cost->findIgnoringCase <= 250 &&
                                                cost->closed <= cost->loaded + keptByView));
        print(count, "ours", cost,
              !isMost ? ""
              : isMet ? "<= 150, <= 50, shown <= 250, closed as loaded, find <= 50, <= 250: met"
                      : "<= 150, <= 50, shown <= 250, closed as loaded, find <= 50, <= 250: MISSED");
        print(count, "QPlainTextEdit", measureApart(QStringLiteral("plain-text-edit"), count));
        print(count, "lnav -n", reader, "(its whole process)");
        allMet = allMet && isMet;
    }
    return allMet ? EXIT_SUCCESS : EXIT_FAILURE;
}

int measure(std::string_view side, std::size_t count) {
    const auto cost = side == "ours" ? ours(count) : plainTextEdit(count);
    std::printf("%f %f %f %f %f %f %f %f", cost.load, cost.firstPaint, cost.loaded, cost.shown, cost.find,
                cost.findIgnoringCase, cost.copy, cost.closed);
    return EXIT_SUCCESS;
}

} // namespace

} // namespace quorvale::bench

/// Without arguments, measures what opening the log window costs a process, beside other ways to show the same lines.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    return argc == 3 ? quorvale::bench::measure(argv[1], std::strtoul(argv[2], nullptr, 10))
                     : quorvale::bench::compareAll();
}
