#include <sys/types.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include <QApplication>

#include <fmt/format.h>

#include "app/composition.h"
#include "app/options.h"
#include "app/startup_trace.h"
#include "platform/desktop/desktop_applications.h"
#include "platform/desktop/qt_main_queue.h"
#include "platform/desktop/system_appearance.h"
#include "presentation/crest_style.h"
#include "presentation/dashboard_window.h"
#include "presentation/icon.h"
#include "presentation/status_item.h"
#include "presentation/theme.h"

namespace tallowcrest {
namespace {

/// Qt ends the process with a crash when it finds no display; a person is owed a sentence.
void reportFatally(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtFatalMsg) {
        fmt::print(stderr,
                   "tallowcrest: the window cannot be opened: {}\n"
                   "tallowcrest: to sample without a window, try: tallowcrest --headless\n",
                   message.section(QLatin1Char('\n'), 0, 0).toStdString());
        std::_Exit(EXIT_FAILURE);
    }
    if (type != QtDebugMsg && type != QtInfoMsg) {
        fmt::print(stderr, "tallowcrest: {}\n", message.toStdString());
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
        QObject::connect(&window, &DashboardWindow::closed, &application, [] {
            if (!StatusItem::hasHost()) {
                QApplication::quit();
            }
        });
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
    const std::vector<std::string> arguments(argv, argv + argc);
    qInstallMessageHandler(reportFatally);
    QApplication::setApplicationName(QStringLiteral("Tallowcrest"));
    QApplication::setApplicationVersion(QStringLiteral(TALLOWCREST_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("tallowcrest"));
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication application(argc, argv);
    QApplication::setStyle(new CrestStyle);
    QApplication::setWindowIcon(applicationIcon());
    return runWindow(application, arguments);
}
