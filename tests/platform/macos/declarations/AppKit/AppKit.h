#pragma once

#import <Foundation/Foundation.h>

@interface NSWorkspace : NSObject
@property(class, readonly) NSWorkspace* sharedWorkspace;
- (void)activateFileViewerSelectingURLs:(NSArray<NSURL*>*)fileURLs;
@end
