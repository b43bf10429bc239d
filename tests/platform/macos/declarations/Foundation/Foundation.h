#pragma once

#include <cstddef>

using BOOL = bool;
using NSUInteger = unsigned long;
#define YES true
#define NO false
#define nil nullptr

__attribute__((objc_root_class))
@interface NSObject
+ (instancetype)alloc;
- (instancetype)init;
@end

@protocol NSObject
@end

@interface NSString : NSObject
@property(readonly) const char* UTF8String;
+ (instancetype)stringWithUTF8String:(const char*)text;
- (BOOL)isEqualToString:(NSString*)other;
@end

@interface NSArray<Element> : NSObject
+ (instancetype)arrayWithObjects:(const Element[])objects count:(NSUInteger)count;
@end

@interface NSMutableArray<Element> : NSArray <Element>
+ (instancetype)array;
- (void)addObject:(Element)object;
@end

@interface NSSet<Element> : NSObject
@end

@interface NSMutableSet<Element> : NSSet <Element>
+ (instancetype)set;
- (void)addObject:(Element)object;
@end

@interface NSBundle : NSObject
@property(class, readonly) NSBundle* mainBundle;
@property(readonly) NSString* bundleIdentifier;
@end

@interface NSUUID : NSObject
@property(class, readonly) NSUUID* UUID;
@property(readonly) NSString* UUIDString;
@end

@interface NSURL : NSObject
+ (instancetype)fileURLWithFileSystemRepresentation:(const char*)path
                                        isDirectory:(BOOL)isDirectory
                                      relativeToURL:(NSURL*)base;
@property(readonly) const char* fileSystemRepresentation;
@end

@interface NSError : NSObject
@property(readonly) NSString* localizedDescription;
@end

@interface NSFileManager : NSObject
@property(class, readonly) NSFileManager* defaultManager;
- (BOOL)trashItemAtURL:(NSURL*)url
      resultingItemURL:(NSURL* __autoreleasing*)resultingURL
                 error:(NSError* __autoreleasing*)error;
@end

@interface DispatchQueue : NSObject
@end
using dispatch_queue_t = DispatchQueue*;
extern "C" dispatch_queue_t dispatch_get_main_queue();
extern "C" void dispatch_async(dispatch_queue_t queue, void (^block)());
