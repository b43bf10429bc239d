#include "platform/desktop/dbus_notification_center.h"

#include <algorithm>
#include <utility>

#include <QDBusError>
#include <QDBusMessage>
#include <QVariant>
#include <QVariantMap>

#include "platform/desktop/lent_activation_token.h"
#include "platform/desktop/notification_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

QString service() {
    return u"org.freedesktop.Notifications"_s;
}

QString path() {
    return u"/org/freedesktop/Notifications"_s;
}

/// More than a person reads of either; what daemons do with far longer texts is their own affair.
constexpr qsizetype longestTitle = 120;
constexpr qsizetype longestBody = 600;

/// A daemon that never tells that one was closed must not make the list grow for ever.
constexpr std::size_t mostOpen = 64;

/// Not critical: most daemons keep those on the screen until they are clicked, and break an owner's
/// wish not to be disturbed for them. This one is a hint, and another follows while the load lasts.
constexpr uchar normalUrgency = 1;

QVariantMap hintsFor(const NotificationContent& content) {
    QVariantMap hints{
        {u"urgency"_s, QVariant::fromValue(normalUrgency)},
        {u"desktop-entry"_s, u"tallowcrest"_s},
    };
    if (!content.categoryIdentifier.empty()) {
        // A kind of the program's own, by which its owner can tell the daemon how to show it.
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
                                               std::chrono::milliseconds patience)
    : bus_(std::move(bus)),
      patience_(patience),
      owner_(service(), bus_, QDBusServiceWatcher::WatchForOwnerChange) {
    connect(&owner_, &QDBusServiceWatcher::serviceOwnerChanged, this,
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
    if (waiting_.size() >= mostWaiting) {
        waiting_.pop_front();
    }
    waiting_.push_back({std::move(content)});
    sendNext();
}

/// One at a time: a daemon that hangs is owed no more than one call.
void DBusNotificationCenter::sendNext() {
    if (call_ || waiting_.empty()) {
        return;
    }
    if (daemon_.isEmpty()) {
        ask();
        return;
    }
    Waiting next = std::move(waiting_.front());
    waiting_.pop_front();
    show(std::move(next));
}

/// By the well-known name, so that the bus starts a daemon where none runs yet.
void DBusNotificationCenter::ask() {
    startCall(service(), u"GetCapabilities"_s, {}, &DBusNotificationCenter::capabilitiesArrived);
}

void DBusNotificationCenter::show(Waiting next) {
    underWay_ = std::move(next);
    const NotificationContent& content = underWay_.content;
    const QString body = notificationText(content.body, longestBody);
    const QVariantList arguments{
        u"Tallowcrest"_s,
        0U,  // in place of no other
        u"tallowcrest"_s,
        notificationText(content.title, longestTitle),
        capabilities_.contains(u"body-markup"_s) ? asNotificationMarkup(body) : body,
        actionsFor(content.categoryIdentifier),
        hintsFor(content),
        -1,  // for as long as the daemon thinks right
    };
    startCall(daemon_, u"Notify"_s, arguments, &DBusNotificationCenter::shown);
}

void DBusNotificationCenter::startCall(
    const QString& daemon, const QString& method, const QVariantList& arguments,
    void (DBusNotificationCenter::*answered)(const QDBusMessage& answer)) {
    QDBusMessage message = QDBusMessage::createMethodCall(daemon, path(), service(), method);
    message.setArguments(arguments);
    call_ = std::make_unique<QDBusPendingCallWatcher>(
        bus_.asyncCall(message, static_cast<int>(patience_.count())));
    connect(call_.get(), &QDBusPendingCallWatcher::finished, this, [this, answered] {
        // It is what this is called by.
        call_->deleteLater();
        const QDBusMessage answer = call_.release()->reply();
        (this->*answered)(answer);
    });
}

void DBusNotificationCenter::capabilitiesArrived(const QDBusMessage& answer) {
    if (answer.type() != QDBusMessage::ReplyMessage || answer.signature() != "as"_L1) {
        waiting_.clear();
        return;
    }
    getToKnow(answer.service(), answer.arguments().constFirst().toStringList());
    sendNext();
}

void DBusNotificationCenter::shown(const QDBusMessage& answer) {
    const bool isShown =
        answer.type() == QDBusMessage::ReplyMessage && answer.signature() == "u"_L1;
    // Which is what the bus says of one that has just ended.
    const bool hasReachedNobody = QDBusError(answer).type() == QDBusError::ServiceUnknown;
    if (isShown) {
        rememberOpen(answer.service(), answer.arguments().constFirst().toUInt());
    } else if (hasReachedNobody && !underWay_.hasComeBack) {
        waiting_.push_front({std::move(underWay_.content), true});
        forgetDaemon();
    } else if (!daemon_.isEmpty()) {
        // Whoever does not take this one, or does not answer at all, is not pressed with the rest.
        waiting_.clear();
    }
    sendNext();
}

void DBusNotificationCenter::rememberOpen(const QString& daemon, uint id) {
    if (daemon != daemon_) {
        return;
    }
    if (open_.size() >= mostOpen) {
        open_.pop_front();
    }
    open_.push_back({id, {}});
}

void DBusNotificationCenter::ownerChanged(const QString& before, const QString& now) {
    if (now == daemon_) {
        return;
    }
    const bool isAsking = daemon_.isEmpty();
    // One that appears where there was none has been called up, and its answer is on the way.
    if (isAsking && before.isEmpty()) {
        return;
    }
    forgetDaemon();
    // What is being shown is waited for: its end tells whether it has reached anybody.
    if (isAsking) {
        call_.reset();
    }
    sendNext();
}

void DBusNotificationCenter::getToKnow(const QString& daemon, QStringList capabilities) {
    forgetDaemon();
    // Without its signals a press would lead nowhere, so it is offered no buttons then.
    if (!connectSignals(daemon, true)) {
        capabilities.removeAll(u"actions"_s);
    }
    daemon_ = daemon;
    capabilities_ = std::move(capabilities);
}

void DBusNotificationCenter::forgetDaemon() {
    if (!daemon_.isEmpty()) {
        connectSignals(daemon_, false);
    }
    daemon_.clear();
    capabilities_.clear();
    open_.clear();
}

bool DBusNotificationCenter::connectSignals(const QString& daemon, bool wanted) {
    const auto each = [&](const char* name, const char* slot) {
        const QString signal = QString::fromLatin1(name);
        return wanted ? bus_.connect(daemon, path(), service(), signal, this, slot)
                      : bus_.disconnect(daemon, path(), service(), signal, this, slot);
    };
    const bool tellsActions = each("ActionInvoked", SLOT(actionInvoked(uint, QString)));
    const bool tellsTokens = each("ActivationToken", SLOT(activationToken(uint, QString)));
    const bool tellsEnds = each("NotificationClosed", SLOT(notificationClosed(uint, uint)));
    return tellsActions && tellsTokens && tellsEnds;
}

/// Pairs of key and title. The first is the plain click, whose title most daemons never show.
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

std::deque<DBusNotificationCenter::Open>::iterator DBusNotificationCenter::findOpen(uint id) {
    return std::find_if(open_.begin(), open_.end(),
                        [id](const Open& each) { return each.id == id; });
}

void DBusNotificationCenter::actionInvoked(uint id, const QString& key) {
    const auto pressed = findOpen(id);
    if (pressed == open_.end() || !respond_) {
        return;
    }
    const LentActivationToken lent(std::exchange(pressed->activationToken, {}).toUtf8());
    // A copy, as it may replace the one that is kept, or end this object.
    const auto respond = respond_;
    respond(key.toStdString());
}

/// Comes right before the press that it is for.
void DBusNotificationCenter::activationToken(uint id, const QString& token) {
    const auto pressed = findOpen(id);
    if (pressed != open_.end()) {
        pressed->activationToken = token;
    }
}

void DBusNotificationCenter::notificationClosed(uint id, uint) {
    const auto closed = findOpen(id);
    if (closed != open_.end()) {
        open_.erase(closed);
    }
}

}  // namespace tallowcrest
