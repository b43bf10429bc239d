#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "actions/graceful_quit.h"
#include "advisor/advisor_ports.h"
#include "disk/disk_ports.h"
#include "integration/notification_center.h"
#include "integration/update_ports.h"
#include "sampling/command_safety_policy.h"
#include "sampling/tool_launcher.h"

/// The services of the desktop, as this operating system provides them. Main thread.
namespace tallowcrest::desktop {

/// How desktops differ in what a program is expected to do.
struct Habits {
    /// The locale of the owner's settings, such as "de_DE". Empty where programs get it in their
    /// environment.
    std::string localeName = {};
    /// Whether a click on a status item opens its context menu, whatever else it does.
    bool clickOpensContextMenu = false;
    /// Whether a start of the program that is running, or a click on its icon, only brings it
    /// forward, so that it has to show a closed window by itself.
    bool startOnlyActivates = false;
};
Habits habits();

/// `launcher` must outlive the result.
std::shared_ptr<GracefulQuit> makeGracefulQuit(ToolLauncher& launcher);

std::unique_ptr<NotificationCenter> makeNotificationCenter();

/// The desktop's store for secrets; null where it is missing. A requested stop ends what waits in
/// it, also for the owner, but not what waits in the Keychain of macOS.
std::shared_ptr<SecretStore> makeSecretStore(std::stop_token stop);

/// Replaces the content of the clipboard with a plain text. It remains after this program has ended
/// if the desktop keeps the clipboard.
void storeOnClipboard(const std::string& text);

/// Shows a file, selected, in a file manager; opens its folder if no file manager answers. Returns
/// immediately. Failures are ignored.
void revealFile(const std::filesystem::path& file);

/// As `UpdatePorts` says. Where opening goes on for longer than `patience`, the file counts as
/// opened: what shows it can be what was waited for.
std::unique_ptr<FileOpening> openFile(
    const std::string& path, std::function<void(bool)> told,
    std::chrono::milliseconds patience = std::chrono::seconds(10));
bool openAddress(const std::string& url);

/// Asks for one folder in a dialog of the active window, as `DiskDesktopPorts::chooseFolder` says.
std::unique_ptr<FolderQuestion> chooseFolder(
    std::string_view title, std::string_view button,
    std::function<void(std::optional<std::string>)> answered);

/// Starts the first application of `paths` that is installed, without a shell. The paths are
/// absolute. A program must be in `allowed`; an application bundle is a folder, which the desktop
/// opens. Returns false when none is installed or can be started.
bool openFirstApplication(const std::vector<std::string>& paths,
                          const CommandSafetyPolicy::AllowedExecutables& allowed);

/// Does this with the process viewers of the system.
bool openActivityMonitor();

/// Does this with the applications for the client of the tailnet.
bool openTailscaleApp();

}  // namespace tallowcrest::desktop
