#include "platform/desktop_services.h"

#include <QClipboard>
#include <QDBusConnection>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QString>

#include "platform/desktop/file_manager.h"

namespace tallowcrest::desktop {

void storeOnClipboard(const std::string& text) {
    QGuiApplication::clipboard()->setText(QString::fromStdString(text));
}

void revealFile(const std::filesystem::path& file) {
    showInFileManager(file, QDBusConnection::sessionBus(),
                      [](const QUrl& folder) { QDesktopServices::openUrl(folder); });
}

}  // namespace tallowcrest::desktop
