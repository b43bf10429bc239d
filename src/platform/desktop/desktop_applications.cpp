#include "platform/desktop/desktop_applications.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QProcess>
#include <QUrl>

#include "platform/host.h"

namespace tallowcrest {
namespace {

/// A bundle is a folder that the desktop itself knows how to open.
bool open(const QFileInfo& application) {
    if (application.isDir()) {
        return QDesktopServices::openUrl(QUrl::fromLocalFile(application.filePath()));
    }
    return application.isExecutable() &&
           CommandSafetyPolicy::isAllowedExecutable(host::allowedExecutables(),
                                                    application.filePath().toStdString()) &&
           QProcess::startDetached(application.filePath(), {});
}

}  // namespace

bool openActivityMonitor() {
    for (const std::string& path : host::activityMonitors()) {
        if (open(QFileInfo(QString::fromStdString(path)))) {
            return true;
        }
    }
    return false;
}

}  // namespace tallowcrest
