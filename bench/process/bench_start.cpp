#include "link/Bus.hpp"
#include "link/Helper.hpp"
#include "support/Figures.hpp"

#include <QCoreApplication>
#include <QProcess>

#include <chrono>
#include <cstdlib>
#include <sys/resource.h>

namespace quorvale::bench {

namespace {

constexpr std::size_t turns = 41;

/// A tray without a panel, which status icons register with.
class Watcher {
public:
    Watcher() {
        check(sd_bus_add_object_vtable(bus_.get(), nullptr, "/StatusNotifierWatcher", name, members, this));
        check(sd_bus_request_name(bus_.get(), name, 0));
    }

    Watcher(const Watcher&) = delete;
    Watcher& operator=(const Watcher&) = delete;

    void waitForIcon() {
        for (isRegistered_ = false; !isRegistered_;) {
            turn(bus_);
        }
    }

private:
    static constexpr auto name = "org.kde.StatusNotifierWatcher";

    static int onRegistration(sd_bus_message* call, void* self, sd_bus_error* /*error*/) {
        static_cast<Watcher*>(self)->isRegistered_ = true;
        return sd_bus_reply_method_return(call, "");
    }

    static int hasHost(sd_bus* /*bus*/, const char* /*path*/, const char* /*interface*/, const char* /*property*/,
                       sd_bus_message* reply, void* /*self*/, sd_bus_error* /*error*/) {
        return sd_bus_message_append(reply, "b", 1);
    }

    static constexpr sd_bus_vtable members[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD("RegisterStatusNotifierItem", "s", "", &Watcher::onRegistration, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_PROPERTY("IsStatusNotifierHostRegistered", "b", &Watcher::hasHost, 0, 0),
        SD_BUS_VTABLE_END,
    };

    Bus bus_ = sessionBus();
    bool isRegistered_ = false;
};

/// Milliseconds that the ended children of this process have computed.
double processorTime() {
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    const auto milliseconds = [](const timeval& time) {
        return 1e3 * static_cast<double>(time.tv_sec) + 1e-3 * static_cast<double>(time.tv_usec);
    };
    return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

/// Milliseconds from a program's start to the registration of its icon.
double timeToIcon(Watcher& watcher, const QString& program, std::vector<double>& computed) {
    const auto before = processorTime();
    QProcess process;
    process.setStandardErrorFile(QProcess::nullDevice());
    const auto begin = std::chrono::steady_clock::now();
    start(process, program);
    watcher.waitForIcon();
    const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - begin;
    process.kill();
    process.waitForFinished();
    computed.push_back(processorTime() - before);
    return taken.count();
}

int run(const QString& helper, const QString& tray) {
    Watcher watcher;
    Figure wall{
        .what = "start to icon, ms", .ours = {}, .baselineName = "only a tray icon", .baseline = {}, .most = 1.0};
    Figure processor{
        .what = "processor time until then, ms", .ours = {}, .baselineName = "only a tray icon", .baseline = {}};
    const auto ofOurs = [&] { return timeToIcon(watcher, helper, processor.ours); };
    const auto ofTray = [&] { return timeToIcon(watcher, tray, processor.baseline); };
    // So that both find their libraries in memory.
    ofOurs();
    ofTray();
    sampleByTurns(turns, wall, ofOurs, ofTray);
    return print({wall, processor}) ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

} // namespace quorvale::bench

/// Measures how long it takes from a program's start until its icon registers. Arguments: the helper, minimal_tray.
int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const auto arguments = QCoreApplication::arguments();
    return quorvale::bench::run(arguments[1], arguments[2]);
}
