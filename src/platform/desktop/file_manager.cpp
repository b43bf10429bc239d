#include "platform/desktop/file_manager.h"

#include <utility>

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QFile>

namespace tallowcrest {

void showInFileManager(const std::filesystem::path& file, const QDBusConnection& bus,
                       std::function<void(const QUrl& folder)> openFolder) {
    const QUrl url = QUrl::fromLocalFile(QFile::decodeName(file.c_str()));
    const QUrl folder = QUrl::fromLocalFile(QFile::decodeName(file.parent_path().c_str()));
    QDBusMessage show = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    show << QStringList(url.toString(QUrl::FullyEncoded)) << QString();
    // Time for one that the bus has to start first.
    constexpr int patienceMilliseconds = 5000;
    auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(show, patienceMilliseconds));
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, answer,
                     [folder, openFolder = std::move(openFolder)](QDBusPendingCallWatcher* call) {
                         if (call->isError()) {
                             openFolder(folder);
                         }
                         call->deleteLater();
                     });
}

}  // namespace tallowcrest
