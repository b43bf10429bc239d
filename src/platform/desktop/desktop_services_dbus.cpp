#include <utility>

#include <QDBusConnection>
#include <QDesktopServices>

#include "platform/desktop/dbus_notification_center.h"
#include "platform/desktop/desktop_graceful_quit.h"
#include "platform/desktop/file_manager.h"
#include "platform/desktop_services.h"
#include "platform/host.h"
#include "platform/secrets/secret_service_store.h"

namespace tallowcrest::desktop {

Habits habits() {
    return {};
}

std::shared_ptr<GracefulQuit> makeGracefulQuit(ToolLauncher&) {
    return std::make_shared<DesktopGracefulQuit>(host::isStillThere);
}

std::unique_ptr<NotificationCenter> makeNotificationCenter() {
    return std::make_unique<DBusNotificationCenter>();
}

std::shared_ptr<SecretStore> makeSecretStore(std::stop_token stop) {
    return std::make_shared<SecretServiceStore>(std::move(stop));
}

void revealFile(const std::filesystem::path& file) {
    showInFileManager(file, QDBusConnection::sessionBus(),
                      [](const QUrl& folder) { QDesktopServices::openUrl(folder); });
}

}  // namespace tallowcrest::desktop
