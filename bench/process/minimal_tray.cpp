#include <QApplication>
#include <QIcon>
#include <QMenu>
#include <QPixmap>
#include <QSystemTrayIcon>

/// What any tray program of this toolkit costs: an icon and a menu.
int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QPixmap picture(18, 18);
    picture.fill(Qt::blue);
    QMenu menu;
    menu.addAction(QStringLiteral("Quit"), &application, &QCoreApplication::quit);
    QSystemTrayIcon icon{QIcon(picture)};
    icon.setContextMenu(&menu);
    icon.show();
    return QApplication::exec();
}
