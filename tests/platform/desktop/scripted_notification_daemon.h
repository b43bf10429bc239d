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

/// A fake notification daemon that a test controls.
class ScriptedNotificationDaemon final : public QDBusVirtualObject {
public:
    enum class NameRequest { claim, replace };

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

    /// Notification ids start at `firstId`.
    ScriptedNotificationDaemon(const PrivateBus& bus, QStringList capabilities, uint firstId = 1,
                               NameRequest request = NameRequest::claim);
    /// Releases the name and disconnects.
    ~ScriptedNotificationDaemon() override;

    bool ownsItsName() const { return ownsItsName_; }
    /// The unique name of its connection.
    QString connection() const { return bus_.baseService(); }
    const QStringList& calls() const { return calls_; }
    /// The notifications it has received, answered or not.
    const std::vector<Notification>& shown() const { return shown_; }
    QStringList bodies() const;

    /// Holds back replies to `method` from now on; empty holds back none.
    void holdBack(const QString& method) { heldMethod_ = method; }
    void releaseHeld();
    /// Replies `answer` to `method`, even if it has the wrong type.
    void answerWith(const QString& method, const QVariant& answer);
    void refuse(const QString& method, const QString& error = "org.tallowcrest.test.Refused");

    void invokeAction(uint id, const QString& key) const;
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

/// Sends the signal of an invoked action from any client, to all or only to `destination`.
void sendActionInvoked(const QDBusConnection& from, uint id, const QString& key,
                       const QString& destination = {});

}  // namespace tallowcrest
