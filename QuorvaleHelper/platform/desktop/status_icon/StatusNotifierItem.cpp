#include "platform/desktop/status_icon/StatusNotifierItem.hpp"

#include "platform/desktop/windows/ActivationToken.hpp"

#include <QAction>
#include <QDBusAbstractAdaptor>
#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QtEndian>

#include <utility>

namespace quorvale::platform::desktop {

/// (iiay): ARGB32 in network byte order.
struct NotifierPixmap {
    int width = 0;
    int height = 0;
    QByteArray pixels;
};

using NotifierPixmaps = QList<NotifierPixmap>;

/// (sa(iiay)ss)
struct NotifierToolTip {
    QString iconName;
    NotifierPixmaps icon;
    QString title;
    QString text;
};

QDBusArgument& operator<<(QDBusArgument& argument, const NotifierPixmap& pixmap) {
    argument.beginStructure();
    argument << pixmap.width << pixmap.height << pixmap.pixels;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierPixmap& pixmap) {
    argument.beginStructure();
    const auto& rest = argument >> pixmap.width >> pixmap.height >> pixmap.pixels;
    rest.endStructure();
    return rest;
}

QDBusArgument& operator<<(QDBusArgument& argument, const NotifierToolTip& toolTip) {
    argument.beginStructure();
    argument << toolTip.iconName << toolTip.icon << toolTip.title << toolTip.text;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierToolTip& toolTip) {
    argument.beginStructure();
    const auto& rest = argument >> toolTip.iconName >> toolTip.icon >> toolTip.title >> toolTip.text;
    rest.endStructure();
    return rest;
}

namespace {

const auto itemPath = QStringLiteral("/StatusNotifierItem");

NotifierPixmap notifierPixmap(const QImage& image) {
    const auto argb = image.convertToFormat(QImage::Format_ARGB32);
    NotifierPixmap pixmap{argb.width(), argb.height(), QByteArray(argb.sizeInBytes(), Qt::Uninitialized)};
    qToBigEndian<quint32>(argb.constBits(), qsizetype{argb.width()} * argb.height(), pixmap.pixels.data());
    return pixmap;
}

class Adaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category)
    Q_PROPERTY(QString Id READ id)
    Q_PROPERTY(QString Title READ title)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(int WindowId READ windowId)
    Q_PROPERTY(QString IconName READ iconName)
    Q_PROPERTY(quorvale::platform::desktop::NotifierPixmaps IconPixmap READ iconPixmap)
    Q_PROPERTY(QString IconAccessibleDesc READ iconAccessibleDesc)
    Q_PROPERTY(quorvale::platform::desktop::NotifierToolTip ToolTip READ toolTip)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu)
    Q_PROPERTY(QDBusObjectPath Menu READ menu)

public:
    explicit Adaptor(StatusNotifierItem& item) : QDBusAbstractAdaptor(&item), item_(item) {
        connect(&item, &StatusNotifierItem::toolTipChanged, this, &Adaptor::NewToolTip);
        // Panels read the description of the icon again together with the icon.
        connect(&item, &StatusNotifierItem::toolTipChanged, this, &Adaptor::NewIcon);
    }

    [[nodiscard]] QString category() const { return QStringLiteral("SystemServices"); }

    [[nodiscard]] QString id() const { return item_.description().id; }

    [[nodiscard]] QString title() const { return item_.description().title; }

    [[nodiscard]] QString status() const { return QStringLiteral("Active"); }

    [[nodiscard]] int windowId() const { return 0; }

    [[nodiscard]] QString iconName() const { return {}; }

    [[nodiscard]] NotifierPixmaps iconPixmap() {
        if (pixmaps_.isEmpty()) {
            for (const auto& image : item_.icon().images()) {
                pixmaps_.push_back(notifierPixmap(image));
            }
        }
        return pixmaps_;
    }

    [[nodiscard]] QString iconAccessibleDesc() const { return item_.toolTip(); }

    // The text under the title stays empty: panels take it as markup.
    [[nodiscard]] NotifierToolTip toolTip() const { return {{}, {}, item_.toolTip(), {}}; }

    [[nodiscard]] bool itemIsMenu() const { return false; }

    [[nodiscard]] QDBusObjectPath menu() const { return QDBusObjectPath(DBusMenu::path); }

public Q_SLOTS:

    void Activate(int x, int y) { Q_EMIT item_.activated({x, y}, item_.takeActivationToken()); }

    void SecondaryActivate(int x, int y) { Activate(x, y); }

    void ContextMenu(int x, int y) { Q_EMIT item_.contextMenuRequested({x, y}); }

    void Scroll(int /*delta*/, const QString& /*orientation*/) {}

    void ProvideXdgActivationToken(const QString& token) { item_.setActivationToken(token); }

Q_SIGNALS:
    void NewToolTip();
    void NewIcon();

private:
    StatusNotifierItem& item_;
    NotifierPixmaps pixmaps_;
};

} // namespace

StatusNotifierItem::StatusNotifierItem(QDBusConnection bus, Description description, const QMenu& menu, QObject* parent)
    : QObject(parent),
      bus_(std::move(bus)),
      description_(std::move(description)),
      menu_(bus_, menu),
      toolTip_(description_.title) {
    qDBusRegisterMetaType<NotifierPixmap>();
    qDBusRegisterMetaType<NotifierPixmaps>();
    qDBusRegisterMetaType<NotifierToolTip>();
    new Adaptor(*this);
    bus_.registerObject(itemPath, this, QDBusConnection::ExportAdaptors);
    connect(&menu_, &DBusMenu::chosen, this, [this](QAction* action, std::uint32_t timestamp) {
        const ActivationToken token(takeActivationToken(), timestamp);
        action->trigger();
    });
}

StatusNotifierItem::~StatusNotifierItem() {
    bus_.unregisterObject(itemPath);
}

const MenuBarIcon& StatusNotifierItem::icon() {
    if (!icon_) {
        icon_ = description_.makeIcon();
    }
    return *icon_;
}

void StatusNotifierItem::setToolTip(const QString& text) {
    if (std::exchange(toolTip_, text) != text) {
        isAnnounced_ = false;
        announce();
    }
}

void StatusNotifierItem::setActivationToken(const QString& token) {
    activationToken_ = token.size() <= ActivationToken::longest ? token : QString();
}

void StatusNotifierItem::setAnnouncements(Announcements announcements) {
    announcements_ = announcements;
    announce();
}

void StatusNotifierItem::announce() {
    if (announcements_ == Announcements::Prompt && !std::exchange(isAnnounced_, true)) {
        Q_EMIT toolTipChanged();
    }
}

} // namespace quorvale::platform::desktop

#include "StatusNotifierItem.moc"
