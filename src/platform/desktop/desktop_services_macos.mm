#import <AppKit/AppKit.h>

#include <memory>

#include "platform/desktop/user_notification_center.h"
#include "platform/desktop_services.h"

namespace tallowcrest::desktop {

std::unique_ptr<NotificationCenter> makeNotificationCenter() {
    return std::make_unique<UserNotificationCenter>();
}

void revealFile(const std::filesystem::path& file) {
    // Foundation ends the program when it is to make an address of it.
    if (file.empty()) {
        return;
    }
    NSURL* const url = [NSURL fileURLWithFileSystemRepresentation:file.c_str()
                                                      isDirectory:NO
                                                    relativeToURL:nil];
    [NSWorkspace.sharedWorkspace activateFileViewerSelectingURLs:@[ url ]];
}

}  // namespace tallowcrest::desktop
