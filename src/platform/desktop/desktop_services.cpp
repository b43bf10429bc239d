#include "platform/desktop_services.h"

#include <algorithm>

#include <QClipboard>
#include <QDesktopServices>
#include <QFileInfo>
#include <QGuiApplication>
#include <QProcess>
#include <QString>
#include <QUrl>

#include "platform/desktop/environment_of_others.h"
#include "platform/host.h"

namespace tallowcrest::desktop {
namespace {

bool start(const QString& program) {
    QProcess process;
    process.setProgram(program);
    process.setProcessEnvironment(environmentOfOthers());
    return process.startDetached();
}

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

void storeOnClipboard(const std::string& text) {
    QGuiApplication::clipboard()->setText(QString::fromStdString(text));
}

bool openAddress(const std::string& url) {
    return QDesktopServices::openUrl(QUrl(QString::fromStdString(url), QUrl::StrictMode));
}

bool openFirstApplication(const std::vector<std::string>& paths,
                          const CommandSafetyPolicy::AllowedExecutables& allowed) {
    return std::any_of(paths.begin(), paths.end(), [&](const std::string& path) {
        return open(QFileInfo(QString::fromStdString(path)), allowed);
    });
}

bool openActivityMonitor() {
    return openFirstApplication(host::activityMonitors(), host::allowedExecutables());
}

bool openTailscaleApp() {
    return openFirstApplication(host::tailscaleApps(), host::allowedExecutables());
}

}  // namespace tallowcrest::desktop
