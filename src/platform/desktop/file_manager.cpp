#include "platform/desktop/file_manager.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QFile>
#include <QUrl>

namespace tallowcrest {

void revealFile(const std::filesystem::path& file) {
    const QUrl url = QUrl::fromLocalFile(QFile::decodeName(file.c_str()));
    const QUrl folder = QUrl::fromLocalFile(QFile::decodeName(file.parent_path().c_str()));
    QDBusMessage show = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    show << QStringList(url.toString(QUrl::FullyEncoded)) << QString();
    constexpr int patienceMilliseconds = 5000;
    auto* answer = new QDBusPendingCallWatcher(
        QDBusConnection::sessionBus().asyncCall(show, patienceMilliseconds));
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, answer,
                     [folder](QDBusPendingCallWatcher* call) {
                         if (call->isError()) {
                             QDesktopServices::openUrl(folder);
                         }
                         call->deleteLater();
                     });
}

}  // namespace tallowcrest
