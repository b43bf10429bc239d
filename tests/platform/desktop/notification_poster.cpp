#include <cstdio>
#include <iostream>
#include <memory>
#include <string>
#include <thread>

#include <QCoreApplication>
#include <QTimer>

#include "core/activity_log.h"
#include "core/confirmation_desk.h"
#include "core/jobs/jobs.h"
#include "core/locale.h"
#include "core/services.h"
#include "core/settings/settings_owner.h"
#include "integration/notification_actions.h"
#include "integration/notification_center.h"
#include "integration/warning_notifications.h"
#include "platform/base/system_clock.h"
#include "platform/base/thread_work_queue.h"
#include "platform/desktop/dbus_notification_center.h"
#include "platform/desktop/qt_main_queue.h"

using namespace tallowcrest;

namespace {

/// Prints which button was pressed before it passes the response on.
class PrintingCenter final : public NotificationCenter {
public:
    void setCategories(std::vector<NotificationCategory> categories) override {
        center_.setCategories(std::move(categories));
    }
    void requestAuthorization() override { center_.requestAuthorization(); }
    void post(NotificationContent content) override { center_.post(std::move(content)); }
    void setResponseHandler(std::function<void(const std::string&)> respond) override {
        center_.setResponseHandler([respond](const std::string& identifier) {
            std::cout << "pressed " << identifier << std::endl;
            std::cout << "route " << rawValue(routeOfNotificationAction(identifier)) << std::endl;
            if (respond) {
                respond(identifier);
            }
        });
    }

private:
    DBusNotificationCenter center_;
};

void execute(const std::string& line, WarningNotifications& notifications,
             SettingsOwner& settings) {
    constexpr std::string_view warn = "warn ";
    if (line.rfind(warn, 0) == 0) {
        notifications.postLoadWarning(line.substr(warn.size()));
    } else if (line == "with buttons" || line == "without buttons") {
        settings.set(&Settings::notificationsIncludeActions, line == "with buttons");
        // By itself it does so a turn later, which may be behind the next command.
        notifications.registerNotificationCategories();
    } else if (line == "quit") {
        QCoreApplication::quit();
    } else {
        std::cout << "what is: " << line << std::endl;
    }
}

}  // namespace

// Reads one command a line from standard input and posts load warnings. Prints the button that was
// pressed, then the route it leads to.
int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    PrintingCenter center;
    QtMainQueue queue;
    MemorySettingsStore store;
    SettingsOwner settings(store, queue, "owner");
    SystemClock clock;
    ThreadWorkQueue workQueue([] {});
    Jobs jobs(queue, workQueue);
    ActivityLog log(clock, settings, queue);
    ConfirmationDesk confirmations(log, queue);
    PlainLocale locale;
    const Services services{log, settings, confirmations, jobs, clock, locale};
    center.setResponseHandler({});
    WarningNotifications notifications(services, &center);
    notifications.registerNotificationCategories();
    std::thread reader([&] {
        std::string line;
        do {
            if (!std::getline(std::cin, line)) {
                line = "quit";
            }
            queue.post([&, line] { execute(line, notifications, settings); });
        } while (line != "quit");
    });
    std::cout << "ready" << std::endl;
    const int status = QCoreApplication::exec();
    reader.join();
    return status;
}
