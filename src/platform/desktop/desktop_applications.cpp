#include "platform/desktop/desktop_applications.h"

#include <algorithm>

#include <QDesktopServices>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QUrl>

#include "platform/base/activation_variables.h"
#include "platform/host.h"

namespace tallowcrest {
namespace {

/// What the desktop gave this program for a window of its own is for no other program.
bool start(const QString& program) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* variable : activationVariables) {
        environment.remove(QString::fromLatin1(variable));
    }
    QProcess process;
    process.setProgram(program);
    process.setProcessEnvironment(environment);
    return process.startDetached();
}

/// A bundle is a folder that the desktop itself knows how to open.
bool open(const QFileInfo& application, const CommandSafetyPolicy::AllowedExecutables& allowed) {
    if (application.isDir()) {
        return QDesktopServices::openUrl(QUrl::fromLocalFile(application.filePath()));
    }
    return application.isExecutable() &&
           CommandSafetyPolicy::isAllowedExecutable(allowed,
                                                    application.filePath().toStdString()) &&
           start(application.filePath());
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
