// In the place of what Objective-C++ defines, which no compiler here reads.

#include "platform/desktop_services.h"
#include "platform/trash/finder_trash.h"

namespace tallowcrest {

FinderTrash::Moved moveByFinder(const std::string&) {
    return {};
}

std::unique_ptr<NotificationCenter> desktop::makeNotificationCenter() {
    return nullptr;
}

void desktop::revealFile(const std::filesystem::path&) {}

}  // namespace tallowcrest

int main() {}
