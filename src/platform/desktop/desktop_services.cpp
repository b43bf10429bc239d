#include "platform/desktop_services.h"

#include <algorithm>

#include <QClipboard>
#include <QDesktopServices>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QUrl>

#include "platform/base/environment.h"
#include "platform/host.h"

namespace tallowcrest::desktop {
namespace {

/// Starts the program without this program's activation token.
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

bool openFile(const std::string& path) {
    return QDesktopServices::openUrl(QUrl::fromLocalFile(QFile::decodeName(path.c_str())));
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
