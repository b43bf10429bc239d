#pragma once

#include <filesystem>
#include <functional>

#include <QDBusConnection>
#include <QUrl>

namespace tallowcrest {

/// Shows a file, selected, in the file manager that answers on `bus`; `openFolder` is called with
/// the file's folder where none does. Returns at once, with the file manager still to answer.
/// Main thread.
void showInFileManager(const std::filesystem::path& file, const QDBusConnection& bus,
                       std::function<void(const QUrl& folder)> openFolder);

}  // namespace tallowcrest
