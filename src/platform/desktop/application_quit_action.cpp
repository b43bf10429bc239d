#include "platform/desktop/application_quit_action.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <utility>

#include <QDBusArgument>
#include <QDBusError>
#include <QDBusMessage>
#include <QSet>
#include <QStringList>
#include <QVariant>

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using Clock = std::chrono::steady_clock;

QString quitAction() {
    return u"quit"_s;
}

struct Destination {
    QString service;
    QString path;
    QString interface;
};

/// Calls to the bus and its clients, with a timeout for each and one for all together. The type of
/// each reply is checked, because any client may send anything.
class BoundedCalls {
public:
    BoundedCalls(const QDBusConnection& bus, BusCallTimeouts timeouts)
        : bus_(bus), callTimeout_(timeouts.call), deadline_(Clock::now() + timeouts.total) {}

    bool isTimeUp() const { return Clock::now() >= deadline_; }

    QDBusMessage call(const Destination& to, const QString& method,
                      const QVariantList& arguments) const {
        QDBusMessage message =
            QDBusMessage::createMethodCall(to.service, to.path, to.interface, method);
        message.setArguments(arguments);
        message.setAutoStartService(false);
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline_ - Clock::now());
        const auto limit = std::clamp(left, std::chrono::milliseconds(1), callTimeout_);
        return bus_.call(message, QDBus::Block, static_cast<int>(limit.count()));
    }

    /// The single value, of type `signature`, that the bus itself replies; invalid otherwise.
    QVariant askBus(const QString& method, const QVariantList& arguments,
                    const QString& signature) const {
        const QString bus = u"org.freedesktop.DBus"_s;
        return soleValue(call({bus, u"/org/freedesktop/DBus"_s, bus}, method, arguments),
                         signature);
    }

    static QVariant soleValue(const QDBusMessage& answer, const QString& signature) {
        const bool isValid = answer.type() == QDBusMessage::ReplyMessage &&
                             answer.signature() == signature && answer.arguments().size() == 1;
        return isValid ? answer.arguments().constFirst() : QVariant();
    }

private:
    QDBusConnection bus_;
    std::chrono::milliseconds callTimeout_;
    Clock::time_point deadline_;
};

/// One application on the bus, addressed by the unique name of its connection, because a well-known
/// name may pass to another client between two calls.
class Application {
public:
    Application(const BoundedCalls& calls, QString connection, const QString& path)
        : calls_(calls), connection_(std::move(connection)), path_(path) {}

    /// Whether the action exists, is enabled, and takes no parameter.
    bool offersQuit() const {
        const QVariant names =
            BoundedCalls::soleValue(calls_.call(actions(), u"List"_s, {}), u"as"_s);
        if (!names.toStringList().contains(quitAction())) {
            return false;
        }
        const QVariant description = BoundedCalls::soleValue(
            calls_.call(actions(), u"Describe"_s, {quitAction()}), u"(bgav)"_s);
        if (!description.isValid()) {
            return false;
        }
        bool isEnabled = false;
        // Read as a string, because Qt warns about an empty value of the signature type.
        QString parameter;
        const auto fields = description.value<QDBusArgument>();
        fields.beginStructure();
        fields >> isEnabled >> parameter;
        fields.endStructure();
        return isEnabled && parameter.isEmpty();
    }

    /// Whether the application was asked. A timeout counts as asked: it has just answered two
    /// calls, so it is probably asking the user what to save, or has already quit.
    bool askToQuit() const {
        const QDBusMessage answer =
            calls_.call({connection_, path_, u"org.freedesktop.Application"_s}, u"ActivateAction"_s,
                        {quitAction(), QVariantList(), QVariantMap()});
        if (answer.type() == QDBusMessage::ReplyMessage) {
            return true;
        }
        const QDBusError::ErrorType error = QDBusError(answer).type();
        return error == QDBusError::NoReply || error == QDBusError::Timeout ||
               error == QDBusError::TimedOut;
    }

private:
    Destination actions() const { return {connection_, path_, u"org.gtk.Actions"_s}; }

    const BoundedCalls& calls_;
    QString connection_;
    QString path_;
};

class Members {
public:
    explicit Members(const std::vector<ProcessSample>& members) {
        for (const ProcessSample& member : members) {
            byPID_.emplace(member.pid, &member);
        }
    }

    /// The member that owns the connection `name`, as reported by the bus, which knows its pid from
    /// the kernel. Null when no member does.
    const ProcessSample* ownerOf(const QString& name, const BoundedCalls& calls) const {
        const QVariant number = calls.askBus(u"GetConnectionUnixProcessID"_s, {name}, u"u"_s);
        const auto found = number.isValid() ? byPID_.find(number.toUInt()) : byPID_.end();
        return found != byPID_.end() ? found->second : nullptr;
    }

private:
    std::unordered_map<std::int64_t, const ProcessSample*> byPID_;
};

}  // namespace

QString applicationObjectPath(const QString& busName) {
    QString path = busName;
    return u'/' + path.replace(u'.', u'/').replace(u'-', u'_');
}

ApplicationQuitAction::ApplicationQuitAction(IsStillThere isStillThere, QDBusConnection bus,
                                             BusCallTimeouts timeouts)
    : isStillThere_(std::move(isStillThere)), bus_(std::move(bus)), timeouts_(timeouts) {}

std::size_t ApplicationQuitAction::askToQuit(const std::vector<ProcessSample>& members) const {
    if (members.empty() || !bus_.isConnected()) {
        return 0;
    }
    const BoundedCalls calls(bus_, timeouts_);
    const Members reviewed(members);
    QSet<QString> asked;
    const QStringList names = calls.askBus(u"ListNames"_s, {}, u"as"_s).toStringList();
    for (const QString& name : names) {
        if (calls.isTimeUp()) {
            break;
        }
        if (name.startsWith(u':') || reviewed.ownerOf(name, calls) == nullptr) {
            continue;
        }
        const QString connection = calls.askBus(u"GetNameOwner"_s, {name}, u"s"_s).toString();
        if (!connection.startsWith(u':') || asked.contains(connection)) {
            continue;
        }
        // Checked again for the connection itself, as the name may have passed to another client.
        const ProcessSample* const member = reviewed.ownerOf(connection, calls);
        const Application application(calls, connection, applicationObjectPath(name));
        if (member != nullptr && application.offersQuit() && isStillThere_(*member) &&
            application.askToQuit()) {
            asked.insert(connection);
        }
    }
    return static_cast<std::size_t>(asked.size());
}

}  // namespace tallowcrest
