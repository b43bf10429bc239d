#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "actions/graceful_quit.h"
#include "integration/notification_center.h"
#include "sampling/tool_launcher.h"

/// The desktop's services, as this operating system has them. Main thread.
namespace tallowcrest::desktop {

/// `launcher` must outlive it.
std::shared_ptr<GracefulQuit> makeGracefulQuit(ToolLauncher& launcher);

std::unique_ptr<NotificationCenter> makeNotificationCenter();

/// Replaces what the clipboard holds by one plain text. It stays there after this program's end
/// where the desktop keeps it.
void storeOnClipboard(const std::string& text);

/// Shows a file, selected, in the file manager where one answers, else opens its folder. Returns at
/// once; a failure is not noticed.
void revealFile(const std::filesystem::path& file);

}  // namespace tallowcrest::desktop
