#include <cstdio>
#include <iostream>
#include <memory>
#include <string>
#include <thread>

#include <QCoreApplication>
#include <QTimer>

#include "core/settings.h"
#include "integration/warning_notifications.h"
#include "platform/desktop/dbus_notification_center.h"
#include "platform/desktop/qt_main_queue.h"

using namespace tallowcrest;

namespace {

/// Writes down which button leads through before the program's own answer to it is lost.
class OverheardCenter final : public NotificationCenter {
public:
    void setCategories(std::vector<NotificationCategory> categories) override {
        center_.setCategories(std::move(categories));
    }
    void requestAuthorization() override { center_.requestAuthorization(); }
    void post(NotificationContent content) override { center_.post(std::move(content)); }
    void setResponseHandler(std::function<void(const std::string&)> respond) override {
        center_.setResponseHandler([respond](const std::string& identifier) {
            std::cout << "pressed " << identifier << std::endl;
            if (respond) {
                respond(identifier);
            }
        });
    }

private:
    DBusNotificationCenter center_;
};

void obey(const std::string& line, WarningNotifications& notifications, Settings& settings) {
    constexpr std::string_view warn = "warn ";
    if (line.rfind(warn, 0) == 0) {
        notifications.postLoadWarning(line.substr(warn.size()));
    } else if (line == "with buttons" || line == "without buttons") {
        settings.notificationsIncludeActions = line == "with buttons";
        notifications.registerNotificationCategories();
    } else if (line == "quit") {
        QCoreApplication::quit();
    } else {
        std::cout << "what is: " << line << std::endl;
    }
}

}  // namespace

// Posts load warnings as standard input says, a command a line, and writes to standard output what
// comes of them: the button that was pressed, then the route that it leads to.
int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    OverheardCenter center;
    Settings settings;
    settings.notificationsIncludeActions = true;
    WarningNotifications notifications(
        &center, settings,
        {[](AppRoute route) { std::cout << "route " << rawValue(route) << std::endl; }, {}, {}});
    notifications.registerNotificationCategories();
    QtMainQueue queue;
    std::thread reader([&] {
        std::string line;
        do {
            if (!std::getline(std::cin, line)) {
                line = "quit";
            }
            queue.post([&, line] { obey(line, notifications, settings); });
        } while (line != "quit");
    });
    std::cout << "ready" << std::endl;
    const int status = QCoreApplication::exec();
    reader.join();
    return status;
}
