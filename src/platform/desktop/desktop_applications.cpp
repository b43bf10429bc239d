#include "platform/desktop/desktop_applications.h"

#include <algorithm>

#include <QDesktopServices>
#include <QFileInfo>
#include <QProcess>
#include <QUrl>

#include "platform/host.h"

namespace tallowcrest {
namespace {

/// A bundle is a folder that the desktop itself knows how to open.
bool open(const QFileInfo& application, const CommandSafetyPolicy::AllowedExecutables& allowed) {
    if (application.isDir()) {
        return QDesktopServices::openUrl(QUrl::fromLocalFile(application.filePath()));
    }
    return application.isExecutable() &&
           CommandSafetyPolicy::isAllowedExecutable(allowed,
                                                    application.filePath().toStdString()) &&
           QProcess::startDetached(application.filePath(), {});
}

}  // namespace

bool openFirstApplication(const std::vector<std::string>& paths,
                          const CommandSafetyPolicy::AllowedExecutables& allowed) {
    return std::any_of(paths.begin(), paths.end(), [&](const std::string& path) {
        return open(QFileInfo(QString::fromStdString(path)), allowed);
    });
}

bool openActivityMonitor() {
    return openFirstApplication(host::activityMonitors(), host::allowedExecutables());
}

}  // namespace tallowcrest
