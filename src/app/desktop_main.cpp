#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

#include <QApplication>
#include <QObject>
#include <QPointer>
#include <QScreen>
#include <QStyle>
#include <QtGlobal>
#include <fmt/format.h>

#include "app/composition.h"
#include "app/console.h"
#include "app/desktop_integration.h"
#include "app/environment_key.h"
#include "app/http_module.h"
#include "app/options.h"
#include "core/settings/settings.h"
#include "platform/base/allocator.h"
#include "platform/base/descriptor_setup.h"
#include "platform/base/environment.h"
#include "platform/base/termination_signals.h"
#include "platform/desktop/accessibility_bus.h"
#include "platform/desktop/instance_listener.h"
#include "platform/desktop/qt_locale.h"
#include "platform/desktop/qt_main_queue.h"
#include "platform/desktop/system_appearance.h"
#include "platform/desktop/tray_host_watch.h"
#include "platform/desktop_services.h"
#include "platform/host.h"
#include "platform/instance/instance_guard.h"
#include "platform/instance/instance_place.h"
#include "platform/trash/system_trash.h"
#include "presentation/shell/dashboard_window.h"
#include "presentation/shell/status_item.h"
#include "presentation/shell/window_return.h"
#include "presentation/widgets/crest_style.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

/// The warnings that Qt gives while it looks for a display. They are held back until the start has
/// succeeded; if it fails, the first of them is the reason.
struct StartWarnings {
    bool isStarting = true;
    QStringList held;
};

StartWarnings& startWarnings() {
    static StartWarnings warnings;
    return warnings;
}

/// Handles a message of Qt. On a fatal one, such as that there is no display, Qt would abort the
/// process; this prints the reason and exits.
void reportMessage(QtMsgType type, const QMessageLogContext&, const QString& message) {
    StartWarnings& warnings = startWarnings();
    if (type == QtFatalMsg) {
        const QString reason =
            warnings.isStarting && !warnings.held.isEmpty() ? warnings.held.first() : message;
        for (const std::string& line : fatalErrorLines(reason.toStdString(), warnings.isStarting)) {
            complain(line);
        }
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

void releaseStartWarnings() {
    StartWarnings& warnings = startWarnings();
    warnings.isStarting = false;
    for (const QString& message : std::exchange(warnings.held, {})) {
        complain(message.toStdString());
    }
}

/// The appearance that the environment requests, which overrides the desktop's. Absent without one.
std::optional<Appearance> requestedAppearance() {
    const QString value = qEnvironmentVariable("TALLOWCREST_APPEARANCE");
    if (value == "dark"_L1) {
        return Appearance::dark;
    }
    if (value == "light"_L1) {
        return Appearance::light;
    }
    return std::nullopt;
}

void followAppearance(SystemAppearance& desktop) {
    if (const auto requested = requestedAppearance()) {
        QApplication::setPalette(paletteFor(*requested));
        return;
    }
    QObject::connect(&desktop, &SystemAppearance::preferenceChanged, [](bool prefersDark) {
        const Appearance preferred = prefersDark ? Appearance::dark : Appearance::light;
        if (CrestTheme::current().appearance != preferred) {
            QApplication::setPalette(paletteFor(preferred));
        }
    });
    desktop.start();
}

/// Whether this start opens a window. If it does not, because another instance is running, `status`
/// is the exit status.
struct Instance {
    std::optional<InstanceGuard> guard;
    std::optional<int> status;
};

Instance claimInstance() {
    InstanceStart start =
        startInstance(instancePlace(instanceEnvironment(host::dataDirectory().string())),
                      {startupActivationToken()});
    switch (start.kind) {
        case InstanceStart::Kind::first:
            break;
        case InstanceStart::Kind::handedOver:
            return {std::nullopt, EXIT_SUCCESS};
        case InstanceStart::Kind::noAnswer:
            complain(start.message);
            return {std::nullopt, EXIT_FAILURE};
        case InstanceStart::Kind::unguarded:
            // Without a guard two windows are possible, which is better than none.
            complain("a second start will not find this window: " + start.message);
            break;
    }
    return {std::move(start.guard), std::nullopt};
}

/// With TALLOWCREST_STARTUP_TRACE set, prints one line to standard error when the first sample is
/// on screen: "first-sample-on-screen" and the milliseconds since the process was started.
void traceFirstSample(DashboardWindow& window) {
    if (!qEnvironmentVariableIsSet("TALLOWCREST_STARTUP_TRACE")) {
        return;
    }
    QObject::connect(&window, &DashboardWindow::firstSampleShown, [] {
        fmt::print(stderr, "first-sample-on-screen {:.1f}\n",
                   host::timeSinceProcessStart().count());
    });
}

int runWindow(QApplication& application, std::optional<InstanceGuard>& guard, bool mayShowWizard) {
    SystemAppearance appearance;
    followAppearance(appearance);
    QtMainQueue mainQueue;
    const desktop::Habits habits = desktop::habits();
    const std::unique_ptr<NotificationCenter> notifications = desktop::makeNotificationCenter();
    QPointer<DashboardWindow> shownWindow;
    const auto openRoute = [&shownWindow](AppRoute route) {
        if (shownWindow != nullptr) {
            shownWindow->openRoute(route);
        }
    };
    Composition composition(
        mainQueue, SettingsAccess::readWrite,
        {.makeGracefulQuit = desktop::makeGracefulQuit,
         .actions = {.openActivityMonitor = desktop::openActivityMonitor,
                     .storeOnPasteboard = desktop::storeOnClipboard,
                     .openTailscaleApp = desktop::openTailscaleApp},
         .revealFile = desktop::revealFile,
         .makeAdvisorPorts =
             [](std::stop_token stop) {
                 return AdvisorPorts{desktop::makeSecretStore(std::move(stop)),
                                     std::make_shared<HttpModule>()};
             },
         .disk = {.reveal = desktop::revealFile, .chooseFolder = desktop::chooseFolder},
         .makeTrash = host::makeTrash,
         .integration = {.notifications = notifications.get(),
                         .openRoute = openRoute,
                         .install = desktopInstallPorts(),
                         .updates = desktopUpdatePorts()},
         .locale = std::make_shared<QtLocale>(
             completedBy(habits.localeName, localeNamesOfThisProcess()))});
    int status = 0;
    {
        DashboardWindow window(composition.monitor());
        shownWindow = &window;
        window.state().navigation.setShowSetupWizard(
            mayShowWizard && !composition.monitor().settings().firstRunComplete);
        // A small screen, or a large scale. The frame around the window is not known yet.
        const QSize frame(0, window.style()->pixelMetric(QStyle::PM_TitleBarHeight));
        window.resize(window.size().boundedTo(window.QWidget::screen()->availableSize() - frame));
        traceFirstSample(window);
        StatusItem statusItem(composition.monitor(), window,
                              habits.clickOpensContextMenu ? StatusItem::ContextMenu::byItem
                                                           : StatusItem::ContextMenu::byDesktop);
        // With a status item the window may be closed while the monitor keeps running; without one
        // a hidden window could never be shown again.
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
        if (habits.startOnlyActivates) {
            returnWhenActivated(window);
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
    useOneArena();
    occupyStandardDescriptors();
    // The window's key is in the keyring, and programs that it starts must not get this one.
    takeEnvironmentKey();
    forbidSecretsFile();
    // A limit on file sizes then makes a save fail instead of ending the program.
    std::signal(SIGXFSZ, SIG_IGN);
    const CommandLine commandLine = readCommandLine({argv, argv + argc});
    if (commandLine.status) {
        return *commandLine.status;
    }
    if (commandLine.options.headless) {
        complain("this program only opens the window. Try: tallowcrest --headless");
        return usageStatus;
    }
    // Before the connection to the display, so that a second start ends quickly. Destroyed after
    // the monitor, so that the next start begins only when this one no longer uses its data.
    Instance instance = claimInstance();
    if (instance.status) {
        return *instance.status;
    }
    qInstallMessageHandler(reportMessage);
    QApplication::setApplicationName(u"Tallowcrest"_s);
    QApplication::setApplicationVersion(QString::fromLatin1(TALLOWCREST_VERSION));
    QApplication::setDesktopFileName(u"tallowcrest"_s);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication application(argc, argv);
    releaseStartWarnings();
    const AccessibilityBus accessibilityBus;
    QApplication::setFont(CrestFonts::applicationFont());
    QApplication::setStyle(new CrestStyle);
    QApplication::setWindowIcon(applicationIcon());
    // Not quit(), which a window that hides itself instead of closing would refuse.
    TerminationSignals termination([&application] {
        QMetaObject::invokeMethod(
            &application, [] { QApplication::exit(EXIT_FAILURE); }, Qt::QueuedConnection);
    });
    const int status = runWindow(application, instance.guard, !commandLine.options.uiTesting);
    termination.endBySignal();
    return status;
}
