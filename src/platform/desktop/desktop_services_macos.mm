#import <AppKit/AppKit.h>

#include <memory>

#include "actions/apple_script_quit.h"
#include "platform/desktop/keychain_secret_store.h"
#include "platform/desktop/user_notification_center.h"
#include "platform/desktop_services.h"
#include "platform/host.h"

namespace tallowcrest::desktop {

std::shared_ptr<GracefulQuit> makeGracefulQuit(ToolLauncher& launcher) {
    return std::make_shared<AppleScriptQuit>(host::allowedExecutables(), launcher);
}

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
