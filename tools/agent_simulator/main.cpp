#include <QCoreApplication>
#include <QDBusConnection>

#include <iostream>
#include <string>

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    auto bus = QDBusConnection::systemBus();
    if (!bus.registerService(QStringLiteral("QVL7T4M2XK.com.quorvale.QuorvaleFilter"))) {
        return 1;
    }
    std::cout << "ready " << bus.baseService().toStdString() << std::endl;
    for (std::string line; std::getline(std::cin, line) && line != "quit";) {
    }
}
