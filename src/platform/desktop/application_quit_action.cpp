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

/// Questions to the bus and its members, each with a limit of its own and all with one. What comes
/// back may be of any form: whoever is on the bus writes it.
class BoundedCalls {
public:
    BoundedCalls(const QDBusConnection& bus, BusCallLimits limits)
        : bus_(bus), oneCall_(limits.oneCall), deadline_(Clock::now() + limits.altogether) {}

    bool isTimeUp() const { return Clock::now() >= deadline_; }

    QDBusMessage call(const Destination& to, const QString& method,
                      const QVariantList& arguments) const {
        QDBusMessage message =
            QDBusMessage::createMethodCall(to.service, to.path, to.interface, method);
        message.setArguments(arguments);
        message.setAutoStartService(false);
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline_ - Clock::now());
        const auto limit = std::clamp(left, std::chrono::milliseconds(1), oneCall_);
        return bus_.call(message, QDBus::Block, static_cast<int>(limit.count()));
    }

    /// The bus's own answer of one value in the form of `signature`; invalid without one.
    QVariant askBus(const QString& method, const QVariantList& arguments,
                    const QString& signature) const {
        const QString bus = u"org.freedesktop.DBus"_s;
        return soleValue(call({bus, u"/org/freedesktop/DBus"_s, bus}, method, arguments),
                         signature);
    }

    static QVariant soleValue(const QDBusMessage& answer, const QString& signature) {
        const bool isOfForm = answer.type() == QDBusMessage::ReplyMessage &&
                              answer.signature() == signature && answer.arguments().size() == 1;
        return isOfForm ? answer.arguments().constFirst() : QVariant();
    }

private:
    QDBusConnection bus_;
    std::chrono::milliseconds oneCall_;
    Clock::time_point deadline_;
};

/// One application on the bus, under the name that is its connection's alone: a name that can be
/// given away might be somebody else's by the time of the next question.
class Application {
public:
    Application(const BoundedCalls& calls, QString connection, const QString& path)
        : calls_(calls), connection_(std::move(connection)), path_(path) {}

    /// Whether its action can be called as it stands: there, enabled now, and without a parameter.
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
        // As a text, for Qt complains of an empty signature where it expects one.
        QString parameter;
        const auto fields = description.value<QDBusArgument>();
        fields.beginStructure();
        fields >> isEnabled >> parameter;
        fields.endStructure();
        return isEnabled && parameter.isEmpty();
    }

    /// Whether it was asked. One that answers with silence was: it has just answered two questions,
    /// so it is busy with this one, as with asking its owner what to save, or has quit over it.
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
            byNumber_.emplace(member.pid, &member);
        }
    }

    /// The member that the connection behind `name` belongs to, by the word of the bus, which has
    /// it from the kernel. Null when it belongs to none.
    const ProcessSample* behind(const QString& name, const BoundedCalls& calls) const {
        const QVariant number = calls.askBus(u"GetConnectionUnixProcessID"_s, {name}, u"u"_s);
        const auto found = number.isValid() ? byNumber_.find(number.toUInt()) : byNumber_.end();
        return found != byNumber_.end() ? found->second : nullptr;
    }

private:
    std::unordered_map<std::int64_t, const ProcessSample*> byNumber_;
};

}  // namespace

QString applicationObjectPath(const QString& busName) {
    QString path = busName;
    return u'/' + path.replace(u'.', u'/').replace(u'-', u'_');
}

ApplicationQuitAction::ApplicationQuitAction(IsStillThere isStillThere, QDBusConnection bus,
                                             BusCallLimits limits)
    : isStillThere_(std::move(isStillThere)), bus_(std::move(bus)), limits_(limits) {}

std::size_t ApplicationQuitAction::askToQuit(const std::vector<ProcessSample>& members) const {
    if (members.empty() || !bus_.isConnected()) {
        return 0;
    }
    const BoundedCalls calls(bus_, limits_);
    const Members reviewed(members);
    QSet<QString> asked;
    const QStringList names = calls.askBus(u"ListNames"_s, {}, u"as"_s).toStringList();
    for (const QString& name : names) {
        if (calls.isTimeUp()) {
            break;
        }
        if (name.startsWith(u':') || reviewed.behind(name, calls) == nullptr) {
            continue;
        }
        const QString connection = calls.askBus(u"GetNameOwner"_s, {name}, u"s"_s).toString();
        if (!connection.startsWith(u':') || asked.contains(connection)) {
            continue;
        }
        // Once more, of the connection itself: the name may have changed hands in between.
        const ProcessSample* const member = reviewed.behind(connection, calls);
        const Application application(calls, connection, applicationObjectPath(name));
        if (member != nullptr && application.offersQuit() && isStillThere_(*member) &&
            application.askToQuit()) {
            asked.insert(connection);
        }
    }
    return static_cast<std::size_t>(asked.size());
}

}  // namespace tallowcrest
