#pragma once

#include <filesystem>
#include <functional>

#include <QDBusConnection>
#include <QUrl>

namespace tallowcrest {

/// Shows a file, selected, in the file manager on `bus`, and calls `openFolder` with its folder if
/// none answers. Returns before the file manager has answered. Main thread.
void showInFileManager(const std::filesystem::path& file, const QDBusConnection& bus,
                       std::function<void(const QUrl& folder)> openFolder);

}  // namespace tallowcrest
