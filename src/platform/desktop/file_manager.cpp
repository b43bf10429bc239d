#include "platform/desktop/file_manager.h"

#include <utility>

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QElapsedTimer>
#include <QFile>

using namespace Qt::StringLiterals;

namespace tallowcrest {

void showInFileManager(const std::filesystem::path& file, const QDBusConnection& bus,
                       std::function<void(const QUrl& folder)> openFolder) {
    const QUrl url = QUrl::fromLocalFile(QFile::decodeName(file.c_str()));
    const QUrl folder = QUrl::fromLocalFile(QFile::decodeName(file.parent_path().c_str()));
    QDBusMessage show = QDBusMessage::createMethodCall(
        u"org.freedesktop.FileManager1"_s, u"/org/freedesktop/FileManager1"_s,
        u"org.freedesktop.FileManager1"_s, u"ShowItems"_s);
    show << QStringList(url.toString(QUrl::FullyEncoded)) << QString();
    // A call on an unconnected bus never finishes.
    if (!bus.isConnected()) {
        openFolder(folder);
        return;
    }
    QElapsedTimer waiting;
    waiting.start();
    auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(show));
    QObject::connect(
        answer, &QDBusPendingCallWatcher::finished, answer,
        [waiting, folder, openFolder = std::move(openFolder)](QDBusPendingCallWatcher* call) {
            // A file manager that is slow to start will still show the file. One that has
            // ended gives the same error, but sooner.
            constexpr qint64 slowMilliseconds = 20'000;
            const bool isSlow = call->error().type() == QDBusError::NoReply &&
                                waiting.elapsed() >= slowMilliseconds;
            if (call->isError() && !isSlow) {
                openFolder(folder);
            }
            call->deleteLater();
        });
}

}  // namespace tallowcrest
