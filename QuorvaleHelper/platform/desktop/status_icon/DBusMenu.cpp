#include "platform/desktop/status_icon/DBusMenu.hpp"

#include <QDBusAbstractAdaptor>
#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QTimer>

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
constexpr uint revision = 1;

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

    [[nodiscard]] QString textDirection() const { return QStringLiteral("ltr"); }

    [[nodiscard]] QString status() const { return QStringLiteral("normal"); }

    [[nodiscard]] QStringList iconThemePath() const { return {}; }

public Q_SLOTS:

    uint GetLayout(int parentId, int recursionDepth, const QStringList& /*propertyNames*/,
                   quorvale::platform::desktop::MenuTree& layout) {
        if (refusesUnknown(parentId)) {
            return {};
        }
        layout.node = nodeOf(parentId);
        if (parentId == rootId && recursionDepth != 0) {
            for (int id = rootId + 1; id <= itemCount(); ++id) {
                layout.children.push_back(QDBusVariant(QVariant::fromValue(MenuTree{nodeOf(id), {}})));
            }
        }
        return revision;
    }

    quorvale::platform::desktop::MenuNodes GetGroupProperties(const QList<int>& ids,
                                                              const QStringList& /*propertyNames*/) {
        MenuNodes nodes;
        for (const auto id : ids) {
            if (isKnown(id)) {
                nodes.push_back(nodeOf(id));
            }
        }
        return nodes;
    }

    QDBusVariant GetProperty(int id, const QString& name) {
        if (refusesUnknown(id)) {
            return {};
        }
        const auto value = nodeOf(id).properties.value(name);
        if (!value.isValid()) {
            refuse(QStringLiteral("There is no property %1.").arg(name));
        }
        return QDBusVariant(value);
    }

    void Event(int id, const QString& eventId, const QDBusVariant& /*data*/, uint /*timestamp*/) {
        if (!refusesUnknown(id) && eventId == QLatin1String("clicked") && id != rootId) {
            // Later: the panel waits for an answer, which a window that is being made would hold up.
            QTimer::singleShot(0, &menu_, menu_.items()[static_cast<std::size_t>(id - 1)].action);
        }
    }

    bool AboutToShow(int /*id*/) { return false; }

private:
    [[nodiscard]] int itemCount() const { return static_cast<int>(menu_.items().size()); }

    [[nodiscard]] bool isKnown(int id) const { return id >= rootId && id <= itemCount(); }

    void refuse(const QString& why) const { menu_.sendErrorReply(QDBusError::InvalidArgs, why); }

    [[nodiscard]] bool refusesUnknown(int id) const {
        const auto isUnknown = !isKnown(id);
        if (isUnknown) {
            refuse(QStringLiteral("There is no item %1.").arg(id));
        }
        return isUnknown;
    }

    /// All properties, whichever were asked for.
    [[nodiscard]] MenuNode nodeOf(int id) const {
        if (id == rootId) {
            return {id, {{QStringLiteral("children-display"), QStringLiteral("submenu")}}};
        }
        auto label = menu_.items()[static_cast<std::size_t>(id - 1)].label;
        // A single underscore would mark the key that chooses the item.
        label.replace(u'_', QLatin1String("__"));
        return {id, {{QStringLiteral("label"), label}}};
    }

    DBusMenu& menu_;
};

} // namespace

const QString DBusMenu::path = QStringLiteral("/StatusNotifierItem/Menu");

DBusMenu::DBusMenu(QDBusConnection bus, MenuItems items, QObject* parent)
    : QObject(parent), bus_(std::move(bus)), items_(std::move(items)) {
    qDBusRegisterMetaType<MenuNode>();
    qDBusRegisterMetaType<MenuNodes>();
    qDBusRegisterMetaType<MenuTree>();
    new Adaptor(*this);
    bus_.registerObject(path, this, QDBusConnection::ExportAdaptors);
}

DBusMenu::~DBusMenu() {
    bus_.unregisterObject(path);
}

} // namespace quorvale::platform::desktop

#include "DBusMenu.moc"
