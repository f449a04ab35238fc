#include "platform/desktop/status_icon/DBusMenu.hpp"

#include <QAction>
#include <QBasicTimer>
#include <QDBusAbstractAdaptor>
#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QIcon>
#include <QImage>
#include <QPixmap>
#include <QSet>
#include <QTimer>
#include <QTimerEvent>

#include <png.h>
#include <utility>

namespace quorvale::platform::desktop {

/// (ia{sv}): an item and some of its properties.
struct MenuNode {
    int id = 0;
    QVariantMap properties;
};

using MenuNodes = QList<MenuNode>;

/// (ia{sv}av): the same with the items under it.
struct MenuTree {
    MenuNode node;
    QList<QDBusVariant> children;
};

QDBusArgument& operator<<(QDBusArgument& argument, const MenuNode& node) {
    argument.beginStructure();
    argument << node.id << node.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, MenuNode& node) {
    argument.beginStructure();
    const auto& rest = argument >> node.id >> node.properties;
    rest.endStructure();
    return rest;
}

/// (ias): an item and properties that it has no longer.
struct MenuLosses {
    int id = 0;
    QStringList properties;
};

QDBusArgument& operator<<(QDBusArgument& argument, const MenuLosses& losses) {
    argument.beginStructure();
    argument << losses.id << losses.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, MenuLosses& losses) {
    argument.beginStructure();
    const auto& rest = argument >> losses.id >> losses.properties;
    rest.endStructure();
    return rest;
}

QDBusArgument& operator<<(QDBusArgument& argument, const MenuTree& tree) {
    argument.beginStructure();
    argument << tree.node.id << tree.node.properties << tree.children;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, MenuTree& tree) {
    argument.beginStructure();
    const auto& rest = argument >> tree.node.id >> tree.node.properties >> tree.children;
    rest.endStructure();
    return rest;
}

namespace {

constexpr int rootId = 0;
/// Of the list of items, which stays what it is.
constexpr uint revision = 1;
/// In pixels; panels that draw icons smaller scale them down.
constexpr int iconSize = 48;

const auto labelKey = QStringLiteral("label");
const auto iconKey = QStringLiteral("icon-data");

/// An underscore marks the key that chooses the item, as an ampersand does in an action's text.
QString label(const QAction& action) {
    QString label;
    const auto text = action.text().replace(u'_', QLatin1String("__"));
    for (qsizetype at = 0; at < text.size(); ++at) {
        const bool isMark = text[at] == u'&' && at + 1 < text.size();
        if (isMark && text[at + 1] != u'&') {
            label += u'_';
        } else {
            at += isMark ? 1 : 0;
            label += text[at];
        }
    }
    return label;
}

/// By the library itself: Qt's writer would load all its plugins for other formats, and keep them.
QByteArray png(const QIcon& icon) {
    const auto picture = icon.pixmap(QSize(iconSize, iconSize), 1).toImage().convertToFormat(QImage::Format_RGBA8888);
    png_image header{};
    header.version = PNG_IMAGE_VERSION;
    header.width = static_cast<png_uint_32>(picture.width());
    header.height = static_cast<png_uint_32>(picture.height());
    header.format = PNG_FORMAT_RGBA;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(header);
    QByteArray bytes(static_cast<qsizetype>(size), Qt::Uninitialized);
    const auto stride = static_cast<png_int_32>(picture.bytesPerLine());
    if (png_image_write_to_memory(&header, bytes.data(), &size, 0, picture.constBits(), stride, nullptr) == 0) {
        return {};
    }
    bytes.truncate(static_cast<qsizetype>(size));
    return bytes;
}

class Adaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_PROPERTY(uint Version READ version)
    Q_PROPERTY(QString TextDirection READ textDirection)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath)

public:
    explicit Adaptor(DBusMenu& menu) : QDBusAbstractAdaptor(&menu), menu_(menu) {}

    [[nodiscard]] uint version() const { return 2; }

    [[nodiscard]] QString textDirection() const {
        return QGuiApplication::isRightToLeft() ? QStringLiteral("rtl") : QStringLiteral("ltr");
    }

    [[nodiscard]] QString status() const { return QStringLiteral("normal"); }

    [[nodiscard]] QStringList iconThemePath() const { return {}; }

public Q_SLOTS:

    uint GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                   quorvale::platform::desktop::MenuTree& layout) {
        if (refusesUnknown(parentId)) {
            return {};
        }
        layout.node = nodeOf(parentId, propertyNames);
        if (parentId == rootId && recursionDepth != 0) {
            for (int id = rootId + 1; id <= itemCount(); ++id) {
                layout.children.push_back(QDBusVariant(QVariant::fromValue(MenuTree{nodeOf(id, propertyNames), {}})));
            }
        }
        return revision;
    }

    /// No ids are all of them.
    quorvale::platform::desktop::MenuNodes GetGroupProperties(const QList<int>& ids, const QStringList& propertyNames) {
        MenuNodes nodes;
        for (int id = rootId; id <= itemCount(); ++id) {
            if (ids.isEmpty() || ids.contains(id)) {
                nodes.push_back(nodeOf(id, propertyNames));
            }
        }
        return nodes;
    }

    QDBusVariant GetProperty(int id, const QString& name) {
        if (refusesUnknown(id)) {
            return {};
        }
        const auto value = nodeOf(id, {}).properties.value(name);
        if (!value.isValid()) {
            refuse(QStringLiteral("There is no property %1.").arg(name));
        }
        return QDBusVariant(value);
    }

    void Event(int id, const QString& eventId, const QDBusVariant& /*data*/, uint timestamp) {
        if (!refusesUnknown(id) && eventId == QLatin1String("clicked") && id != rootId) {
            // Later: the panel waits for an answer, which a window that is being made would hold up.
            QTimer::singleShot(0, &menu_, [this, id, timestamp] { Q_EMIT menu_.chosen(actionOf(id), timestamp); });
        }
    }

    bool AboutToShow(int id) {
        static_cast<void>(refusesUnknown(id));
        return false;
    }

Q_SIGNALS:
    // Spelled out: the toolkit looks a signal's types up by these names.
    void ItemsPropertiesUpdated(QList<quorvale::platform::desktop::MenuNode> updated,
                                QList<quorvale::platform::desktop::MenuLosses> removed);
    void LayoutUpdated(uint revision, int parentId);

protected:
    void timerEvent(QTimerEvent* event) override {
        if (event->timerId() != announcement_.timerId()) {
            QDBusAbstractAdaptor::timerEvent(event);
            return;
        }
        announcement_.stop();
        MenuNodes nodes;
        QList<MenuLosses> losses;
        for (const auto id : std::exchange(changed_, {})) {
            nodes.push_back(nodeOf(id, {}));
            if (!nodes.back().properties.contains(iconKey)) {
                losses.push_back({id, {iconKey}});
            }
        }
        Q_EMIT ItemsPropertiesUpdated(nodes, losses);
    }

private:
    /// From the first read on: before it nobody has anything to bring up to date, as at the start, where drawing the
    /// symbol would delay the icon.
    void follow() {
        if (std::exchange(isFollowing_, true)) {
            return;
        }
        for (int id = rootId + 1; id <= itemCount(); ++id) {
            connect(actionOf(id), &QAction::changed, this, [this, id] {
                changed_.insert(id);
                announcement_.start(0, this);
            });
        }
    }

    [[nodiscard]] int itemCount() const { return static_cast<int>(menu_.actions().size()); }

    [[nodiscard]] QAction* actionOf(int id) const { return menu_.actions()[id - rootId - 1]; }

    void refuse(const QString& why) const { menu_.sendErrorReply(QDBusError::InvalidArgs, why); }

    [[nodiscard]] bool refusesUnknown(int id) const {
        const auto isUnknown = id < rootId || id > itemCount();
        if (isUnknown) {
            refuse(QStringLiteral("There is no item %1.").arg(id));
        }
        return isUnknown;
    }

    /// The item with the properties of these names, or with all if there are none.
    [[nodiscard]] MenuNode nodeOf(int id, const QStringList& names) {
        follow();
        const auto wants = [&](const QString& name) { return names.isEmpty() || names.contains(name); };
        MenuNode node{id, {}};
        const auto put = [&](const QString& name, const auto& makeValue) {
            if (wants(name)) {
                node.properties.insert(name, makeValue());
            }
        };
        if (id == rootId) {
            put(QStringLiteral("children-display"), [] { return QStringLiteral("submenu"); });
            return node;
        }
        const auto& action = *actionOf(id);
        if (action.isSeparator()) {
            put(QStringLiteral("type"), [] { return QStringLiteral("separator"); });
            return node;
        }
        put(labelKey, [&] { return label(action); });
        if (!action.icon().isNull()) {
            put(iconKey, [&] { return png(action.icon()); });
        }
        return node;
    }

    DBusMenu& menu_;
    bool isFollowing_ = false;
    QSet<int> changed_;
    QBasicTimer announcement_;
};

} // namespace

const QString DBusMenu::path = QStringLiteral("/StatusNotifierItem/Menu");

DBusMenu::DBusMenu(QDBusConnection bus, const QMenu& menu, QObject* parent)
    : QObject(parent), bus_(std::move(bus)), actions_(menu.actions()) {
    qDBusRegisterMetaType<MenuNode>();
    qDBusRegisterMetaType<MenuNodes>();
    qDBusRegisterMetaType<MenuTree>();
    qDBusRegisterMetaType<MenuLosses>();
    qDBusRegisterMetaType<QList<MenuLosses>>();
    new Adaptor(*this);
    bus_.registerObject(path, this, QDBusConnection::ExportAdaptors);
}

DBusMenu::~DBusMenu() {
    bus_.unregisterObject(path);
}

} // namespace quorvale::platform::desktop

#include "DBusMenu.moc"
