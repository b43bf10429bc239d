// Those that need no framework of macOS.

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include <QDesktopServices>
#include <QFile>
#include <QLocale>
#include <QObject>
#include <QTimer>
#include <QUrl>

#include "actions/apple_script_quit.h"
#include "platform/desktop_services.h"
#include "platform/host.h"

namespace tallowcrest::desktop {
namespace {

/// The system answers at once whether it has an application for the file.
class SystemOpening final : public FileOpening {
public:
    SystemOpening(const std::string& path, std::function<void(bool)> told) {
        const bool isOpened =
            QDesktopServices::openUrl(QUrl::fromLocalFile(QFile::decodeName(path.c_str())));
        QTimer::singleShot(0, &receiver_, [told = std::move(told), isOpened] { told(isOpened); });
    }

private:
    QObject receiver_;
};

}  // namespace

Habits habits() {
    // The Finder and launchd start programs without LANG.
    return {.localeName = QLocale::system().name().toStdString(),
            .clickOpensContextMenu = true,
            .startOnlyActivates = true};
}

std::unique_ptr<FileOpening> openFile(const std::string& path, std::function<void(bool)> told,
                                      std::chrono::milliseconds /*patience*/) {
    return std::make_unique<SystemOpening>(path, std::move(told));
}

std::shared_ptr<GracefulQuit> makeGracefulQuit(ToolLauncher& launcher) {
    return std::make_shared<AppleScriptQuit>(host::allowedExecutables(), launcher);
}

}  // namespace tallowcrest::desktop
