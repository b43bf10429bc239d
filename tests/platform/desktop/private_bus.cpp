#include "tests/platform/desktop/private_bus.h"

#include <vector>

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDeadlineTimer>

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr int timeout = 20'000;

/// The command that starts a bus with its files in `folder`.
std::vector<std::string> commandIn(const TemporaryFolder& folder, const std::string& services) {
    const std::string servicesElement =
        services.empty() ? "" : "<servicedir>" + services + "</servicedir>";
    const std::string file =
        folder.file("bus.conf",
                    "<busconfig><type>session</type><listen>unix:dir=" + folder.path().string() +
                        "</listen>" + servicesElement +
                        "<policy context=\"default\">"
                        "<allow send_destination=\"*\" eavesdrop=\"true\"/>"
                        "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>",
                    0600);
    return {"dbus-daemon", "--config-file=" + file, "--nofork", "--nopidfile", "--print-address=1"};
}

}  // namespace

PrivateBus::PrivateBus(const std::string& services)
    : daemon_(commandIn(folder_, services)), address_(QString::fromStdString(daemon_.line())) {}

QString PrivateBus::connect() const {
    static int count = 0;
    const QString name = u"private-bus-%1"_s.arg(++count);
    QDBusConnection::connectToBus(address_, name);
    return name;
}

bool settle(const QDBusConnection& connection) {
    const QString bus = u"org.freedesktop.DBus"_s;
    const QDBusMessage request =
        QDBusMessage::createMethodCall(bus, u"/org/freedesktop/DBus"_s, bus, u"GetId"_s);
    return connection.call(request, QDBus::Block, timeout).type() == QDBusMessage::ReplyMessage;
}

bool untilGone(const QDBusConnection& observer, const QString& name) {
    const QDeadlineTimer deadline(timeout);
    while (observer.interface()->isServiceRegistered(name).value()) {
        if (deadline.hasExpired()) {
            return false;
        }
    }
    return true;
}

}  // namespace tallowcrest
