#import <Foundation/Foundation.h>

#include "platform/trash/finder_trash.h"

tallowcrest::FinderTrash::Moved tallowcrest::moveByFinder(const std::string& path) {
    @autoreleasepool {
        NSURL* const url = [NSURL fileURLWithFileSystemRepresentation:path.c_str()
                                                          isDirectory:NO
                                                        relativeToURL:nil];
        NSURL* stored = nil;
        NSError* error = nil;
        if (![NSFileManager.defaultManager trashItemAtURL:url
                                         resultingItemURL:&stored
                                                    error:&error]) {
            const char* const why = error.localizedDescription.UTF8String;
            return {.error = why == nullptr ? "The system gives no reason" : why};
        }
        return {.isDone = true, .stored = stored == nil ? "" : stored.fileSystemRepresentation};
    }
}
