#include <cstdlib>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <QApplication>

#include "app/command_line.h"
#include "app/composition.h"
#include "app/console.h"
#include "app/startup_trace.h"
#include "platform/desktop/desktop_applications.h"
#include "platform/desktop/qt_main_queue.h"
#include "platform/desktop/system_appearance.h"
#include "platform/desktop/tray_host_watch.h"
#include "platform/posix/standard_streams.h"
#include "presentation/crest_style.h"
#include "presentation/dashboard_window.h"
#include "presentation/icon.h"
#include "presentation/status_item.h"
#include "presentation/theme.h"

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
        complain("the window cannot be opened: " +
                 reason.section(QLatin1Char('\n'), 0, 0).toStdString());
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
    if (wish == QLatin1String("dark")) {
        return Appearance::dark;
    }
    if (wish == QLatin1String("light")) {
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

int runWindow(QApplication& application, std::vector<std::string> arguments) {
    SystemAppearance desktop;
    followAppearance(desktop);
    QtMainQueue mainQueue;
    MonitorExtensions extensions;
    extensions.openActivityMonitor = openActivityMonitor;
    Composition composition(mainQueue, std::move(arguments), std::move(extensions));
    int status = 0;
    {
        DashboardWindow window(composition.monitor(), mainQueue);
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
    const std::vector<std::string> arguments(argv, argv + argc);
    const CommandLine commandLine = readCommandLine(arguments);
    if (commandLine.status) {
        return *commandLine.status;
    }
    if (commandLine.options.headless) {
        complain("this program only opens the window. Try: tallowcrest --headless");
        return usageStatus;
    }
    qInstallMessageHandler(reportMessage);
    QApplication::setApplicationName(QStringLiteral("Tallowcrest"));
    QApplication::setApplicationVersion(QStringLiteral(TALLOWCREST_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("tallowcrest"));
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication application(argc, argv);
    endOfStart();
    QApplication::setFont(CrestFonts::applicationFont());
    QApplication::setStyle(new CrestStyle);
    QApplication::setWindowIcon(applicationIcon());
    return runWindow(application, arguments);
}
