#import <AppKit/AppKit.h>

#include <memory>

#include "platform/desktop/keychain_secret_store.h"
#include "platform/desktop/user_notification_center.h"
#include "platform/desktop_services.h"

namespace tallowcrest::desktop {

std::unique_ptr<NotificationCenter> makeNotificationCenter() {
    return std::make_unique<UserNotificationCenter>();
}

std::shared_ptr<SecretStore> makeSecretStore(std::stop_token) {
    return std::make_shared<KeychainSecretStore>();
}

void revealFile(const std::filesystem::path& file) {
    NSURL* const url = [NSURL fileURLWithFileSystemRepresentation:file.c_str()
                                                      isDirectory:NO
                                                    relativeToURL:nil];
    [NSWorkspace.sharedWorkspace activateFileViewerSelectingURLs:@[ url ]];
}

}  // namespace tallowcrest::desktop
