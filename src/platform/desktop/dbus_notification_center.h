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

/// The notifications of desktops that show them through the session bus. The daemon behind them is
/// asked first what it can show, one that comes in its place is asked anew, and none is waited for.
/// Buttons go to daemons that have them; where there are none the notification alone is shown.
class DBusNotificationCenter final : public QObject, public NotificationCenter {
    Q_OBJECT

public:
    /// The most that the daemon may take over one answer. The bus may have to start it for that.
    static constexpr std::chrono::milliseconds defaultPatience{25'000};
    /// The most that wait for a daemon that does not answer; a later one pushes out the oldest.
    static constexpr std::size_t mostWaiting = 4;

    explicit DBusNotificationCenter(QDBusConnection bus = QDBusConnection::sessionBus(),
                                    std::chrono::milliseconds patience = defaultPatience);
    ~DBusNotificationCenter() override;

    void setCategories(std::vector<NotificationCategory> categories) override;

    /// Nothing: the owner gives and takes leave in the desktop's own settings, and no program can
    /// ask for it.
    void requestAuthorization() override {}

    /// Title and body are shortened and made harmless, as they may name what others have named.
    void post(NotificationContent content) override;

    /// While `respond` runs, and what it posts to the event loop, what the desktop gave as leave to
    /// come to the front stands where Qt takes it from. It may destroy this object.
    void setResponseHandler(std::function<void(const std::string& identifier)> respond) override;

private slots:
    void actionInvoked(uint id, const QString& key);
    void activationToken(uint id, const QString& token);
    void notificationClosed(uint id, uint reason);

private:
    struct Waiting {
        NotificationContent content;
        bool hasComeBack = false;
    };

    struct Open {
        uint id = 0;
        QString activationToken;
    };

    void ownerChanged(const QString& before, const QString& now);
    void sendNext();
    void ask();
    void show(Waiting next);
    void startCall(const QString& daemon, const QString& method, const QVariantList& arguments,
                   void (DBusNotificationCenter::*answered)(const QDBusMessage& answer));
    void capabilitiesArrived(const QDBusMessage& answer);
    void shown(const QDBusMessage& answer);
    void rememberOpen(const QString& daemon, uint id);
    void getToKnow(const QString& daemon, QStringList capabilities);
    void forgetDaemon();
    bool connectSignals(const QString& daemon, bool wanted);
    QStringList actionsFor(const std::string& categoryIdentifier) const;
    std::deque<Open>::iterator findOpen(uint id);

    QDBusConnection bus_;
    std::chrono::milliseconds patience_;
    QDBusServiceWatcher owner_;
    std::vector<NotificationCategory> categories_;
    std::function<void(const std::string&)> respond_;

    /// The connection of the daemon that has told what it can do; empty: none has. Everything is
    /// said to and heard from this one connection, so no other can pass for it.
    QString daemon_;
    QStringList capabilities_;
    std::deque<Open> open_;  ///< shown by that daemon; the oldest first
    std::deque<Waiting> waiting_;
    Waiting underWay_;  ///< what the call is to show, when that is its purpose
    /// The one call under way.
    std::unique_ptr<QDBusPendingCallWatcher> call_;
};

}  // namespace tallowcrest
