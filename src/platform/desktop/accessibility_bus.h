#pragma once

#include <QAccessible>
#include <QDBusVirtualObject>
#include <QPointer>

namespace tallowcrest {

/// Stands before Qt's object on the accessibility bus, if there is such a bus, and passes calls on
/// to it. Two it answers itself. It refuses to read all properties of an object at once, as
/// programs do that inspect a bus: Qt 6.4 takes the name of one property for granted and crashes.
/// And it gives the object name of a widget as its `AccessibleId`, which Qt 6.4 does not know. Main
/// thread.
class AccessibilityBus final : public QDBusVirtualObject, QAccessible::ActivationObserver {
    Q_OBJECT

public:
    explicit AccessibilityBus(QObject* parent = nullptr);
    ~AccessibilityBus() override;

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override;

private:
    void accessibilityActiveChanged(bool active) override;
    void standBeforeQt();

    QPointer<QDBusVirtualObject> qts_;
};

}  // namespace tallowcrest
