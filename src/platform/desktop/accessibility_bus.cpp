#include "platform/desktop/accessibility_bus.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

QString rootPath() {
    return u"/org/a11y/atspi/accessible"_s;
}

/// The object name of the widget at `path`; empty for other objects.
QString identifierAt(const QString& path) {
    const QAccessibleInterface* found =
        QAccessible::accessibleInterface(path.section(u'/', -1).toUInt());
    const bool isThere = found != nullptr && found->isValid() && found->object() != nullptr;
    return isThere ? found->object()->objectName() : QString();
}

}  // namespace

AccessibilityBus::AccessibilityBus(QObject* parent) : QDBusVirtualObject(parent) {
    QAccessible::installActivationObserver(this);
    accessibilityActiveChanged(QAccessible::isActive());
}

AccessibilityBus::~AccessibilityBus() {
    QAccessible::removeActivationObserver(this);
}

void AccessibilityBus::accessibilityActiveChanged(bool active) {
    if (active) {
        // Qt registers its object after this call.
        QMetaObject::invokeMethod(this, &AccessibilityBus::standBeforeQt, Qt::QueuedConnection);
    }
}

void AccessibilityBus::standBeforeQt() {
    QDBusConnection bus(u"a11y"_s);
    auto* qts = qobject_cast<QDBusVirtualObject*>(bus.objectRegisteredAt(rootPath()));
    if (qts == nullptr || qts == this) {
        return;
    }
    bus.unregisterObject(rootPath());
    const bool stands = bus.registerVirtualObject(rootPath(), this, QDBusConnection::SubPath);
    if (stands) {
        qts_ = qts;
    } else {
        bus.registerVirtualObject(rootPath(), qts, QDBusConnection::SubPath);
    }
}

QString AccessibilityBus::introspect(const QString& path) const {
    const QDBusVirtualObject* qts = qts_.data();
    return qts != nullptr ? qts->introspect(path) : QString();
}

bool AccessibilityBus::handleMessage(const QDBusMessage& message, const QDBusConnection& bus) {
    if (message.interface() == "org.freedesktop.DBus.Properties"_L1) {
        const QList<QVariant> arguments = message.arguments();
        const bool isSet = message.member() == "Set"_L1;
        if (arguments.size() < (isSet ? 3 : 2)) {
            return bus.send(message.createErrorReply(QDBusError::NotSupported,
                                                     u"Properties can only be read one by one."_s));
        }
        if (message.member() == "Get"_L1 && arguments.at(1).toString() == "AccessibleId"_L1) {
            return bus.send(message.createReply(
                QVariant::fromValue(QDBusVariant(identifierAt(message.path())))));
        }
    }
    QDBusVirtualObject* qts = qts_.data();
    return qts != nullptr && qts->handleMessage(message, bus);
}

}  // namespace tallowcrest
