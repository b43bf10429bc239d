// In the place of what Objective-C++ defines, which no compiler here reads. scripts/macos-check
// requires that each line that ends in "{" or "(" is in the Objective-C++ files too, once, and that
// each header of our own that they include is included here. What they use of these
// headers is used here, so that they are looked at when that is renamed.

#include "core/text.h"
#include "platform/desktop/user_notification_center.h"
#include "platform/desktop_services.h"
#include "platform/trash/finder_trash.h"

tallowcrest::FinderTrash::Moved tallowcrest::moveByFinder(const std::string& path) {
    return {.isDone = true, .stored = path, .error = path};
}

namespace tallowcrest {

struct UserNotificationCenter::Objects {
    std::function<void(const std::string& identifier)> respond;
    std::vector<std::string> shown;
};

UserNotificationCenter::UserNotificationCenter() : objects_(std::make_unique<Objects>()) {
    objects_->shown = {tallowcrest::NotificationCenter::plainClick};
}

UserNotificationCenter::~UserNotificationCenter() {
    objects_->respond = {};
}

void UserNotificationCenter::setCategories(std::vector<NotificationCategory> categories) {
    for (const NotificationCategory& category : categories) {
        for (const NotificationAction& action : category.actions) {
            objects_->shown = {category.identifier, action.identifier, action.title};
        }
    }
}

void UserNotificationCenter::requestAuthorization() {
    objects_->shown.clear();
}

void UserNotificationCenter::post(NotificationContent content) {
    if (content.playsSound) {
        objects_->shown = {replacingControlCharacters(content.title, "?"),
                           replacingControlCharacters(content.body, "?"),
                           content.categoryIdentifier};
    }
}

void UserNotificationCenter::setResponseHandler(
    std::function<void(const std::string& identifier)> respond) {
    objects_->respond = std::move(respond);
}

}  // namespace tallowcrest

namespace tallowcrest::desktop {

std::unique_ptr<NotificationCenter> makeNotificationCenter() {
    return std::make_unique<UserNotificationCenter>();
}

void revealFile(const std::filesystem::path& file) {
    static_cast<void>(file.empty() ? nullptr : file.c_str());
}

}  // namespace tallowcrest::desktop

int main() {}
