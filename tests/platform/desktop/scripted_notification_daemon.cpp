#include "tests/platform/desktop/scripted_notification_daemon.h"

#include <utility>

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusReply>

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

const QString service = u"org.freedesktop.Notifications"_s;
const QString path = u"/org/freedesktop/Notifications"_s;

QDBusMessage signalNamed(const char* name, const QString& destination = {}) {
    const QString signal = QString::fromLatin1(name);
    return destination.isEmpty()
               ? QDBusMessage::createSignal(path, service, signal)
               : QDBusMessage::createTargetedSignal(destination, path, service, signal);
}

}  // namespace

ScriptedNotificationDaemon::ScriptedNotificationDaemon(const PrivateBus& bus,
                                                       QStringList capabilities, uint firstId,
                                                       NameRequest request)
    : name_(bus.connect()), bus_(name_), capabilities_(std::move(capabilities)), nextId_(firstId) {
    if (!bus_.isConnected() || !bus_.registerVirtualObject(path, this)) {
        return;
    }
    ownsItsName_ =
        bus_.interface()->registerService(service,
                                          request == NameRequest::replace
                                              ? QDBusConnectionInterface::ReplaceExistingService
                                              : QDBusConnectionInterface::DontQueueService,
                                          QDBusConnectionInterface::AllowReplacement) ==
        QDBusConnectionInterface::ServiceRegistered;
}

ScriptedNotificationDaemon::~ScriptedNotificationDaemon() {
    bus_.unregisterObject(path);
    QDBusConnection::disconnectFromBus(name_);
}

QStringList ScriptedNotificationDaemon::bodies() const {
    QStringList bodies;
    for (const Notification& each : shown_) {
        bodies << each.body;
    }
    return bodies;
}

void ScriptedNotificationDaemon::releaseHeld() {
    heldMethod_.clear();
    for (const QDBusMessage& message : std::exchange(held_, {})) {
        answer(message);
    }
}

void ScriptedNotificationDaemon::answerWith(const QString& method, const QVariant& answer) {
    scriptedMethod_ = method;
    scriptedAnswer_ = answer;
}

void ScriptedNotificationDaemon::refuse(const QString& method, const QString& error) {
    refusedMethod_ = method;
    refusal_ = error;
}

void ScriptedNotificationDaemon::invokeAction(uint id, const QString& key) const {
    sendActionInvoked(bus_, id, key);
}

void ScriptedNotificationDaemon::giveToken(uint id, const QString& token) const {
    QDBusMessage signal = signalNamed("ActivationToken");
    signal << id << token;
    bus_.send(signal);
}

void ScriptedNotificationDaemon::close(uint id) const {
    constexpr uint expired = 1;
    QDBusMessage signal = signalNamed("NotificationClosed");
    signal << id << expired;
    bus_.send(signal);
}

QString ScriptedNotificationDaemon::introspect(const QString&) const {
    return {};
}

bool ScriptedNotificationDaemon::handleMessage(const QDBusMessage& message,
                                               const QDBusConnection&) {
    const QString method = message.member();
    calls_ << method;
    if (method == "Notify"_L1) {
        const QVariantList given = message.arguments();
        shown_.push_back({nextId_++, message.signature(), given.value(0).toString(),
                          given.value(1).toUInt(), given.value(2).toString(),
                          given.value(3).toString(), given.value(4).toString(),
                          given.value(5).toStringList(), qdbus_cast<QVariantMap>(given.value(6)),
                          given.value(7).toInt()});
    }
    message.setDelayedReply(true);
    if (method == heldMethod_) {
        held_.push_back(message);
    } else {
        answer(message);
    }
    return true;
}

void ScriptedNotificationDaemon::answer(const QDBusMessage& message) const {
    bus_.send(message.member() == refusedMethod_
                  ? message.createErrorReply(refusal_, u"not today"_s)
                  : message.createReply(answerTo(message)));
}

QVariant ScriptedNotificationDaemon::answerTo(const QDBusMessage& message) const {
    if (message.member() == scriptedMethod_) {
        return scriptedAnswer_;
    }
    return message.member() == "Notify"_L1 ? QVariant(shown_.back().id) : QVariant(capabilities_);
}

void sendActionInvoked(const QDBusConnection& from, uint id, const QString& key,
                       const QString& destination) {
    QDBusMessage signal = signalNamed("ActionInvoked", destination);
    signal << id << key;
    from.send(signal);
}

}  // namespace tallowcrest
