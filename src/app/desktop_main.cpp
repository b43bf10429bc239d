#include <csignal>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <QApplication>
#include <QPointer>

#include "app/command_line.h"
#include "app/composition.h"
#include "app/console.h"
#include "app/startup_trace.h"
#include "platform/base/descriptor_setup.h"
#include "platform/base/environment.h"
#include "platform/desktop/instance_listener.h"
#include "platform/desktop/qt_main_queue.h"
#include "platform/desktop/system_appearance.h"
#include "platform/desktop/tray_host_watch.h"
#include "platform/desktop_services.h"
#include "platform/host.h"
#include "platform/instance/instance_guard.h"
#include "platform/instance/instance_place.h"
#include "presentation/shell/dashboard_window.h"
#include "presentation/shell/status_item.h"
#include "presentation/widgets/crest_style.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

/// While Qt looks for a display it warns of what it meets; only if it finds none is that the reason
/// that a person wants to read.
struct StartWarnings {
    bool isStarting = true;
    QStringList held;
};

StartWarnings& startWarnings() {
    static StartWarnings warnings;
    return warnings;
}

/// Qt ends the process with a crash when it finds no display; a person is owed a sentence.
void reportMessage(QtMsgType type, const QMessageLogContext&, const QString& message) {
    StartWarnings& warnings = startWarnings();
    if (type == QtFatalMsg) {
        const QString reason =
            warnings.isStarting && !warnings.held.isEmpty() ? warnings.held.first() : message;
        complain("the window cannot be opened: " + reason.section(u'\n', 0, 0).toStdString());
        complain("to sample without a window, try: tallowcrest --headless");
        std::_Exit(EXIT_FAILURE);
    }
    if (type == QtDebugMsg || type == QtInfoMsg) {
        return;
    }
    if (warnings.isStarting) {
        warnings.held.append(message);
    } else {
        complain(message.toStdString());
    }
}

void endOfStart() {
    StartWarnings& warnings = startWarnings();
    warnings.isStarting = false;
    for (const QString& message : std::exchange(warnings.held, {})) {
        complain(message.toStdString());
    }
}

/// An appearance asked for outright wins over the desktop's.
std::optional<Appearance> requestedAppearance() {
    const QString wish = qEnvironmentVariable("TALLOWCREST_APPEARANCE");
    if (wish == "dark"_L1) {
        return Appearance::dark;
    }
    if (wish == "light"_L1) {
        return Appearance::light;
    }
    return std::nullopt;
}

void followAppearance(SystemAppearance& desktop) {
    if (const auto wish = requestedAppearance()) {
        QApplication::setPalette(paletteFor(*wish));
        return;
    }
    QObject::connect(&desktop, &SystemAppearance::preferenceChanged, [](bool prefersDark) {
        const Appearance wish = prefersDark ? Appearance::dark : Appearance::light;
        if (CrestTheme::current().appearance != wish) {
            QApplication::setPalette(paletteFor(wish));
        }
    });
    desktop.start();
}

/// What this start owes to another one that runs already. `status` is there when it owes no more.
struct Instance {
    std::optional<InstanceGuard> guard;
    std::optional<int> status;
};

Instance becomeTheInstance() {
    // Without a guard two windows are possible, which is better than none.
    InstanceStart start =
        startInstance(instancePlace(instanceEnvironment(host::dataDirectory().string())),
                      {startupActivationToken()});
    switch (start.outcome) {
        case InstanceStart::Outcome::first:
            break;
        case InstanceStart::Outcome::handedOver:
            return {std::nullopt, EXIT_SUCCESS};
        case InstanceStart::Outcome::noAnswer:
            complain(start.message);
            return {std::nullopt, EXIT_FAILURE};
        case InstanceStart::Outcome::unguarded:
            complain("a second start will not find this window: " + start.message);
            break;
    }
    return {std::move(start.guard), std::nullopt};
}

int runWindow(QApplication& application, std::vector<std::string> arguments,
              std::optional<InstanceGuard>& guard) {
    SystemAppearance appearance;
    followAppearance(appearance);
    QtMainQueue mainQueue;
    const std::unique_ptr<NotificationCenter> notifications = desktop::makeNotificationCenter();
    QPointer<DashboardWindow> shownWindow;
    const auto openRoute = [&shownWindow](AppRoute route) {
        if (shownWindow != nullptr) {
            shownWindow->openRoute(route);
        }
    };
    Composition composition(mainQueue, SettingsAccess::keep, std::move(arguments),
                            {desktop::makeGracefulQuit, notifications.get(), desktop::revealFile,
                             desktop::openActivityMonitor, desktop::storeOnClipboard, openRoute});
    int status = 0;
    {
        DashboardWindow window(composition.monitor(), mainQueue);
        shownWindow = &window;
        traceFirstSample(window);
        StatusItem statusItem(composition.monitor(), window);
        // With a status item the window may be closed while the monitor runs on; without one a
        // hidden window could never be reached again.
        TrayHostWatch trayHost;
        QObject::connect(&window, &DashboardWindow::closed, &application, [&trayHost] {
            if (!StatusItem::hasHost() || trayHost.isLost()) {
                QApplication::quit();
            }
        });
        QObject::connect(&trayHost, &TrayHostWatch::lost, &window, &QWidget::show);
        std::optional<InstanceListener> otherStarts;
        if (guard) {
            otherStarts.emplace(*guard);
            QObject::connect(&*otherStarts, &InstanceListener::showRequested, &window,
                             &DashboardWindow::bringToFront);
        }
        window.show();
        status = QApplication::exec();
    }
    if (!composition.shutDown()) {
        std::_Exit(status);
    }
    return status;
}

}  // namespace
}  // namespace tallowcrest

int main(int argc, char** argv) {
    using namespace tallowcrest;
    occupyStandardDescriptors();
    // A limit on the size of files makes a save fail; it need not end the program.
    std::signal(SIGXFSZ, SIG_IGN);
    const std::vector<std::string> arguments(argv, argv + argc);
    const CommandLine commandLine = readCommandLine(arguments);
    if (commandLine.status) {
        return *commandLine.status;
    }
    if (commandLine.options.headless) {
        complain("this program only opens the window. Try: tallowcrest --headless");
        return usageStatus;
    }
    // Before the display is asked for anything: a start that only hands over is quick. Behind the
    // monitor in the order of ending: the next start begins once this one is done with its data.
    Instance instance = becomeTheInstance();
    if (instance.status) {
        return *instance.status;
    }
    qInstallMessageHandler(reportMessage);
    QApplication::setApplicationName(u"Tallowcrest"_s);
    QApplication::setApplicationVersion(QString::fromLatin1(TALLOWCREST_VERSION));
    QApplication::setDesktopFileName(u"tallowcrest"_s);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication application(argc, argv);
    endOfStart();
    QApplication::setFont(CrestFonts::applicationFont());
    QApplication::setStyle(new CrestStyle);
    QApplication::setWindowIcon(applicationIcon());
    return runWindow(application, arguments, instance.guard);
}
