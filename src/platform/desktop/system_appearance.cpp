#include "platform/desktop/system_appearance.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

const QString service = u"org.freedesktop.portal.Desktop"_s;
const QString path = u"/org/freedesktop/portal/desktop"_s;
const QString interface = u"org.freedesktop.portal.Settings"_s;
const QString appearanceGroup = u"org.freedesktop.appearance"_s;
const QString colorSchemeKey = u"color-scheme"_s;

}  // namespace

SystemAppearance::SystemAppearance(QObject* parent)
    : QObject(parent), bus_(QDBusConnection::sessionBus()) {}

void SystemAppearance::start() {
    if (!bus_.isConnected()) {
        return;
    }
    // Qt does not register this type by itself, and finds the types of slots by name.
    qRegisterMetaType<QDBusVariant>();
    if (!bus_.connect(service, path, interface, u"SettingChanged"_s, this,
                      SLOT(settingChanged(QString, QString, QDBusVariant)))) {
        qWarning("changes of the desktop's appearance cannot be followed");
    }
    QDBusMessage request = QDBusMessage::createMethodCall(service, path, interface, u"Read"_s);
    request.setArguments({appearanceGroup, colorSchemeKey});
    auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(request), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this](QDBusPendingCallWatcher* finished) {
                const QDBusPendingReply<QDBusVariant> reply = *finished;
                if (!reply.isError()) {
                    report(reply.value().variant());
                }
                finished->deleteLater();
            });
}

void SystemAppearance::settingChanged(const QString& group, const QString& key,
                                      const QDBusVariant& value) {
    if (group == appearanceGroup && key == colorSchemeKey) {
        report(value.variant());
    }
}

void SystemAppearance::report(const QVariant& value) {
    constexpr uint prefersDark = 1;
    QVariant scheme = value;
    // Some desktops wrap the value once, others twice.
    while (scheme.canConvert<QDBusVariant>()) {
        scheme = scheme.value<QDBusVariant>().variant();
    }
    bool isNumber = false;
    const uint number = scheme.toUInt(&isNumber);
    if (isNumber) {
        emit preferenceChanged(number == prefersDark);
    }
}

}  // namespace tallowcrest
