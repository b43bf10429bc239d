#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <QDBusConnection>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>
#include <QStringList>

#include "integration/notification_center.h"

namespace tallowcrest {

/// Shows notifications through the notification daemon on the session bus. Asks each daemon for its
/// capabilities first, also one that replaces another, without blocking. Notifications have buttons
/// only if the daemon supports them. Main thread.
class DBusNotificationCenter final : public QObject, public NotificationCenter {
    Q_OBJECT

public:
    /// How long to wait for one answer of the daemon, which the bus may have to start first.
    static constexpr std::chrono::milliseconds defaultTimeout{25'000};
    /// How many notifications are queued while the daemon does not answer; the oldest is dropped.
    static constexpr std::size_t maximumQueued = 4;

    explicit DBusNotificationCenter(QDBusConnection bus = QDBusConnection::sessionBus(),
                                    std::chrono::milliseconds timeout = defaultTimeout);
    ~DBusNotificationCenter() override;

    void setCategories(std::vector<NotificationCategory> categories) override;

    /// Does nothing: permission is given in the desktop's settings, and programs cannot ask for it.
    void requestAuthorization() override {}

    /// Title and body are shortened and sanitized, as they may contain untrusted names.
    void post(NotificationContent content) override;

    /// While `respond` runs, and for what it posts to the event loop, the activation token of the
    /// click is set for Qt. `respond` may destroy this object.
    void setResponseHandler(std::function<void(const std::string& identifier)> respond) override;

private slots:
    void actionInvoked(uint id, const QString& key);
    void activationToken(uint id, const QString& token);
    void notificationClosed(uint id, uint reason);

private:
    struct Queued {
        NotificationContent content;
        bool isRetry = false;
    };

    struct Shown {
        uint id = 0;
        QString activationToken;
    };

    void ownerChanged(const QString& before, const QString& now);
    void sendNext();
    void requestCapabilities();
    void show(Queued next);
    void startCall(const QString& daemon, const QString& method, const QVariantList& arguments,
                   void (DBusNotificationCenter::*handleReply)(const QDBusMessage& reply));
    void capabilitiesReceived(const QDBusMessage& reply);
    void notifyReplied(const QDBusMessage& reply);
    void rememberShown(const QString& daemon, uint id);
    void adoptDaemon(const QString& daemon, QStringList capabilities);
    void forgetDaemon();
    bool setSignalsConnected(const QString& daemon, bool connected);
    QStringList actionsFor(const std::string& categoryIdentifier) const;
    std::deque<Shown>::iterator findShown(uint id);

    QDBusConnection bus_;
    std::chrono::milliseconds timeout_;
    QDBusServiceWatcher ownerWatcher_;
    std::vector<NotificationCategory> categories_;
    std::function<void(const std::string&)> respond_;

    /// The unique bus name of the daemon whose capabilities are known; empty when there is none.
    /// All calls go to and all signals are accepted from this connection only.
    QString daemon_;
    QStringList capabilities_;
    std::deque<Shown> shown_;  ///< shown by that daemon, the oldest first
    std::deque<Queued> queue_;
    Queued current_;                                 ///< what `call_` shows, if it is a Notify call
    std::unique_ptr<QDBusPendingCallWatcher> call_;  ///< the one pending call
};

}  // namespace tallowcrest
