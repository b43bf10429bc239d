#pragma once

#include <vector>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include "tests/platform/desktop/private_bus.h"

namespace tallowcrest {

/// A notification daemon that shows nothing and does what a test says.
class ScriptedNotificationDaemon final : public QDBusVirtualObject {
public:
    enum class Arrival { whereNoneIs, inPlaceOfAnother };

    struct Notification {
        uint id = 0;
        QString signature;
        QString program;
        uint replaces = 0;
        QString icon;
        QString title;
        QString body;
        QStringList actions;
        QVariantMap hints;
        int expiry = 0;
    };

    /// Its notifications are numbered from `firstId`.
    ScriptedNotificationDaemon(const PrivateBus& bus, QStringList capabilities, uint firstId = 1,
                               Arrival arrival = Arrival::whereNoneIs);
    /// Leaves the bus, and its name to the next.
    ~ScriptedNotificationDaemon() override;

    bool ownsItsName() const { return ownsItsName_; }
    /// The name that is this connection's alone.
    QString connection() const { return bus_.baseService(); }
    const QStringList& calls() const { return calls_; }
    /// What it was given to show, whether or not it has answered.
    const std::vector<Notification>& shown() const { return shown_; }
    QStringList bodies() const;

    /// Answers to `method` are held back from now on; empty: to none.
    void holdBack(const QString& method) { heldMethod_ = method; }
    void releaseHeld();
    /// Answers this to `method`, whatever its form.
    void answerWith(const QString& method, const QVariant& answer);
    void refuse(const QString& method, const QString& error = "org.tallowcrest.test.Refused");

    void press(uint id, const QString& key) const;
    void giveToken(uint id, const QString& token) const;
    void close(uint id) const;

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    void answer(const QDBusMessage& message) const;
    QVariant answerTo(const QDBusMessage& message) const;

    QString name_;
    QDBusConnection bus_;
    bool ownsItsName_ = false;
    QStringList capabilities_;
    uint nextId_;
    QStringList calls_;
    std::vector<Notification> shown_;
    QString heldMethod_;
    std::vector<QDBusMessage> held_;
    QString refusedMethod_;
    QString refusal_;
    QString scriptedMethod_;
    QVariant scriptedAnswer_;
};

/// What a daemon tells when a button is pressed, from whomever; to all, or to `destination` alone.
void tellPress(const QDBusConnection& from, uint id, const QString& key,
               const QString& destination = {});

}  // namespace tallowcrest
