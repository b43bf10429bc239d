#include "tests/platform/desktop/private_bus.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDeadlineTimer>
#include <QFile>

namespace tallowcrest {
namespace {

constexpr int patience = 20'000;

constexpr const char* configuration = R"(<busconfig>
  <type>session</type>
  <listen>unix:dir=%1</listen>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

}  // namespace

PrivateBus::PrivateBus() {
    const QString path = folder_.filePath(QStringLiteral("bus.conf"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return;
    }
    file.write(QString::fromLatin1(configuration).arg(folder_.path()).toUtf8());
    file.close();
    daemon_.start(QStringLiteral("dbus-daemon"),
                  {QStringLiteral("--config-file=") + path, QStringLiteral("--nofork"),
                   QStringLiteral("--nopidfile"), QStringLiteral("--print-address=1")});
    if (daemon_.waitForReadyRead(patience)) {
        address_ = QString::fromUtf8(daemon_.readLine().trimmed());
    }
}

PrivateBus::~PrivateBus() {
    kill();
}

QString PrivateBus::connect() const {
    static int count = 0;
    const QString name = QStringLiteral("private-bus-%1").arg(++count);
    QDBusConnection::connectToBus(address_, name);
    return name;
}

void PrivateBus::kill() {
    daemon_.kill();
    daemon_.waitForFinished(patience);
}

bool settle(const QDBusConnection& connection) {
    const QString bus = QStringLiteral("org.freedesktop.DBus");
    const QDBusMessage question = QDBusMessage::createMethodCall(
        bus, QStringLiteral("/org/freedesktop/DBus"), bus, QStringLiteral("GetId"));
    return connection.call(question, QDBus::Block, patience).type() == QDBusMessage::ReplyMessage;
}

bool untilGone(const QDBusConnection& observer, const QString& name) {
    const QDeadlineTimer deadline(patience);
    while (observer.interface()->isServiceRegistered(name).value()) {
        if (deadline.hasExpired()) {
            return false;
        }
    }
    return true;
}

}  // namespace tallowcrest
