// Those that need no framework of macOS.

#include <QLocale>

#include "actions/apple_script_quit.h"
#include "platform/desktop_services.h"
#include "platform/host.h"

namespace tallowcrest::desktop {

Habits habits() {
    // The Finder and launchd start programs without LANG.
    return {.localeName = QLocale::system().name().toStdString(),
            .clickOpensContextMenu = true,
            .startOnlyActivates = true};
}

std::shared_ptr<GracefulQuit> makeGracefulQuit(ToolLauncher& launcher) {
    return std::make_shared<AppleScriptQuit>(host::allowedExecutables(), launcher);
}

}  // namespace tallowcrest::desktop
