#include "platform/desktop/dbus_notification_center.h"

#include <algorithm>
#include <utility>

#include <QDBusError>
#include <QDBusMessage>
#include <QVariant>
#include <QVariantMap>

#include "platform/desktop/notification_text.h"
#include "platform/desktop/scoped_activation_token.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

QString service() {
    return u"org.freedesktop.Notifications"_s;
}

QString path() {
    return u"/org/freedesktop/Notifications"_s;
}

/// More than a person reads; some daemons do not handle far longer texts well.
constexpr qsizetype longestTitle = 120;
constexpr qsizetype longestBody = 600;

/// Bounds the list for daemons that never report closed notifications.
constexpr std::size_t maximumShown = 64;

/// Not critical: most daemons show those until they are clicked, even in do-not-disturb mode. A
/// warning is only a hint, and another one follows while the load lasts.
constexpr uchar normalUrgency = 1;

QVariantMap hintsFor(const NotificationContent& content) {
    QVariantMap hints{
        {u"urgency"_s, QVariant::fromValue(normalUrgency)},
        {u"desktop-entry"_s, u"tallowcrest"_s},
    };
    if (!content.categoryIdentifier.empty()) {
        // A category of this program, for rules that the user may set in the daemon.
        hints.insert(u"category"_s, u"x-tallowcrest.warning"_s);
    }
    if (content.playsSound) {
        hints.insert(u"sound-name"_s, u"dialog-warning"_s);
    } else {
        hints.insert(u"suppress-sound"_s, true);
    }
    return hints;
}

}  // namespace

DBusNotificationCenter::DBusNotificationCenter(QDBusConnection bus,
                                               std::chrono::milliseconds timeout)
    : bus_(std::move(bus)),
      timeout_(timeout),
      ownerWatcher_(service(), bus_, QDBusServiceWatcher::WatchForOwnerChange) {
    connect(&ownerWatcher_, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString& before, const QString& now) {
                ownerChanged(before, now);
            });
}

DBusNotificationCenter::~DBusNotificationCenter() = default;

void DBusNotificationCenter::setCategories(std::vector<NotificationCategory> categories) {
    categories_ = std::move(categories);
}

void DBusNotificationCenter::setResponseHandler(
    std::function<void(const std::string& identifier)> respond) {
    respond_ = std::move(respond);
}

void DBusNotificationCenter::post(NotificationContent content) {
    if (queue_.size() >= maximumQueued) {
        queue_.pop_front();
    }
    queue_.push_back({std::move(content)});
    sendNext();
}

/// One call at a time, so that a daemon that hangs has only one pending.
void DBusNotificationCenter::sendNext() {
    if (call_ || queue_.empty()) {
        return;
    }
    if (daemon_.isEmpty()) {
        requestCapabilities();
        return;
    }
    Queued next = std::move(queue_.front());
    queue_.pop_front();
    show(std::move(next));
}

/// Uses the well-known name, so that the bus starts a daemon if none is running.
void DBusNotificationCenter::requestCapabilities() {
    startCall(service(), u"GetCapabilities"_s, {}, &DBusNotificationCenter::capabilitiesReceived);
}

void DBusNotificationCenter::show(Queued next) {
    current_ = std::move(next);
    const NotificationContent& content = current_.content;
    const QString body = notificationText(content.body, longestBody);
    const QVariantList arguments{
        u"Tallowcrest"_s,
        0U,  // replaces no other notification
        u"tallowcrest"_s,
        notificationText(content.title, longestTitle),
        capabilities_.contains(u"body-markup"_s) ? asNotificationMarkup(body) : body,
        actionsFor(content.categoryIdentifier),
        hintsFor(content),
        -1,  // default timeout of the daemon
    };
    startCall(daemon_, u"Notify"_s, arguments, &DBusNotificationCenter::notifyReplied);
}

void DBusNotificationCenter::startCall(
    const QString& daemon, const QString& method, const QVariantList& arguments,
    void (DBusNotificationCenter::*handleReply)(const QDBusMessage& reply)) {
    QDBusMessage message = QDBusMessage::createMethodCall(daemon, path(), service(), method);
    message.setArguments(arguments);
    call_ = std::make_unique<QDBusPendingCallWatcher>(
        bus_.asyncCall(message, static_cast<int>(timeout_.count())));
    connect(call_.get(), &QDBusPendingCallWatcher::finished, this, [this, handleReply] {
        // Not deleted here, as this is called by its signal.
        call_->deleteLater();
        const QDBusMessage reply = call_.release()->reply();
        (this->*handleReply)(reply);
    });
}

void DBusNotificationCenter::capabilitiesReceived(const QDBusMessage& reply) {
    if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != "as"_L1) {
        queue_.clear();
        return;
    }
    adoptDaemon(reply.service(), reply.arguments().constFirst().toStringList());
    sendNext();
}

void DBusNotificationCenter::notifyReplied(const QDBusMessage& reply) {
    const bool isShown = reply.type() == QDBusMessage::ReplyMessage && reply.signature() == "u"_L1;
    // The error of the bus for a daemon that has just ended.
    const bool wasNotDelivered = QDBusError(reply).type() == QDBusError::ServiceUnknown;
    if (isShown) {
        rememberShown(reply.service(), reply.arguments().constFirst().toUInt());
    } else if (wasNotDelivered && !current_.isRetry) {
        queue_.push_front({std::move(current_.content), true});
        forgetDaemon();
    } else if (!daemon_.isEmpty()) {
        // The daemon rejected it or does not answer, so the rest is dropped.
        queue_.clear();
    }
    sendNext();
}

void DBusNotificationCenter::rememberShown(const QString& daemon, uint id) {
    if (daemon != daemon_) {
        return;
    }
    if (shown_.size() >= maximumShown) {
        shown_.pop_front();
    }
    shown_.push_back({id, {}});
}

void DBusNotificationCenter::ownerChanged(const QString& before, const QString& now) {
    if (now == daemon_) {
        return;
    }
    const bool isRequestingCapabilities = daemon_.isEmpty();
    // The first daemon was started by the pending call, and its reply will follow.
    if (isRequestingCapabilities && before.isEmpty()) {
        return;
    }
    forgetDaemon();
    // A pending Notify call goes on: its reply tells whether it was delivered.
    if (isRequestingCapabilities) {
        call_.reset();
    }
    sendNext();
}

void DBusNotificationCenter::adoptDaemon(const QString& daemon, QStringList capabilities) {
    forgetDaemon();
    // Without its signals the buttons would do nothing, so they are left out.
    if (!setSignalsConnected(daemon, true)) {
        capabilities.removeAll(u"actions"_s);
    }
    daemon_ = daemon;
    capabilities_ = std::move(capabilities);
}

void DBusNotificationCenter::forgetDaemon() {
    if (!daemon_.isEmpty()) {
        setSignalsConnected(daemon_, false);
    }
    daemon_.clear();
    capabilities_.clear();
    shown_.clear();
}

bool DBusNotificationCenter::setSignalsConnected(const QString& daemon, bool connected) {
    const auto set = [&](const char* name, const char* slot) {
        const QString signal = QString::fromLatin1(name);
        return connected ? bus_.connect(daemon, path(), service(), signal, this, slot)
                         : bus_.disconnect(daemon, path(), service(), signal, this, slot);
    };
    const bool hasActions = set("ActionInvoked", SLOT(actionInvoked(uint, QString)));
    const bool hasTokens = set("ActivationToken", SLOT(activationToken(uint, QString)));
    const bool hasClosed = set("NotificationClosed", SLOT(notificationClosed(uint, uint)));
    return hasActions && hasTokens && hasClosed;
}

/// Pairs of key and title. The first is the click on the notification itself, whose title most
/// daemons do not show.
QStringList DBusNotificationCenter::actionsFor(const std::string& categoryIdentifier) const {
    if (!capabilities_.contains(u"actions"_s)) {
        return {};
    }
    QStringList actions{QString::fromLatin1(plainClick), u"Open Tallowcrest"_s};
    const auto category = std::find_if(
        categories_.begin(), categories_.end(),
        [&](const NotificationCategory& each) { return each.identifier == categoryIdentifier; });
    if (category != categories_.end()) {
        for (const NotificationAction& action : category->actions) {
            actions << QString::fromStdString(action.identifier)
                    << QString::fromStdString(action.title);
        }
    }
    return actions;
}

std::deque<DBusNotificationCenter::Shown>::iterator DBusNotificationCenter::findShown(uint id) {
    return std::find_if(shown_.begin(), shown_.end(),
                        [id](const Shown& each) { return each.id == id; });
}

void DBusNotificationCenter::actionInvoked(uint id, const QString& key) {
    const auto clicked = findShown(id);
    if (clicked == shown_.end() || !respond_) {
        return;
    }
    const ScopedActivationToken token(std::exchange(clicked->activationToken, {}).toUtf8());
    // A copy, because the call may replace the handler or destroy this object.
    const auto respond = respond_;
    respond(key.toStdString());
}

/// Sent right before the `ActionInvoked` signal that it belongs to.
void DBusNotificationCenter::activationToken(uint id, const QString& token) {
    const auto clicked = findShown(id);
    if (clicked != shown_.end()) {
        clicked->activationToken = token;
    }
}

void DBusNotificationCenter::notificationClosed(uint id, uint) {
    const auto closed = findShown(id);
    if (closed != shown_.end()) {
        shown_.erase(closed);
    }
}

}  // namespace tallowcrest
