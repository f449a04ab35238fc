#include "link/Receiver.hpp"

#include <QApplication>
#include <QPalette>
#include <QSocketNotifier>
#include <QWidget>

/// What any window of this toolkit takes to show a push: it only changes its colour, and has the bus on its own thread.
int main(int argc, char** argv) {
    using namespace quorvale::bench;
    const QApplication application(argc, argv);
    QWidget window;
    const auto show = [&window](bool status) { window.setPalette(status ? Qt::green : Qt::red); };
    show(false);
    window.setGeometry(100, 400, 200, 100);
    window.show();

    const Receiver receiver(show);
    const auto takeAll = [bus = receiver.bus().get()] {
        while (check(sd_bus_process(bus, nullptr)) > 0) {
        }
    };
    const QSocketNotifier incoming(sd_bus_get_fd(receiver.bus().get()), QSocketNotifier::Read);
    QObject::connect(&incoming, &QSocketNotifier::activated, takeAll);
    takeAll();
    return QApplication::exec();
}
