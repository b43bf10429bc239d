#import <AppKit/AppKit.h>

#include "platform/desktop_services.h"

namespace tallowcrest::desktop {

void revealFile(const std::filesystem::path& file) {
    NSURL* const url = [NSURL fileURLWithFileSystemRepresentation:file.c_str()
                                                      isDirectory:NO
                                                    relativeToURL:nil];
    [NSWorkspace.sharedWorkspace activateFileViewerSelectingURLs:@[ url ]];
}

}  // namespace tallowcrest::desktop
