#pragma once

#import <Foundation/Foundation.h>

using UNNotificationPresentationOptions = NSUInteger;
enum : NSUInteger {
    UNNotificationPresentationOptionSound = 1U << 1U,
    UNNotificationPresentationOptionBanner = 1U << 4U,
};

using UNAuthorizationOptions = NSUInteger;
enum : NSUInteger {
    UNAuthorizationOptionSound = 1U << 1U,
    UNAuthorizationOptionAlert = 1U << 2U,
};

using UNNotificationActionOptions = NSUInteger;
enum : NSUInteger { UNNotificationActionOptionForeground = 1U << 2U };

using UNNotificationCategoryOptions = NSUInteger;
enum : NSUInteger { UNNotificationCategoryOptionNone = 0U };

extern "C" NSString* const UNNotificationDefaultActionIdentifier;

@interface UNNotification : NSObject
@end

@interface UNNotificationResponse : NSObject
@property(readonly) NSString* actionIdentifier;
@end

@interface UNNotificationSound : NSObject
@property(class, readonly) UNNotificationSound* defaultSound;
@end

@interface UNNotificationContent : NSObject
@end

@interface UNMutableNotificationContent : UNNotificationContent
@property(copy) NSString* title;
@property(copy) NSString* body;
@property(copy) NSString* categoryIdentifier;
@property(copy) UNNotificationSound* sound;
@end

@interface UNNotificationTrigger : NSObject
@end

@interface UNNotificationRequest : NSObject
+ (instancetype)requestWithIdentifier:(NSString*)identifier
                              content:(UNNotificationContent*)content
                              trigger:(UNNotificationTrigger*)trigger;
@end

@interface UNNotificationAction : NSObject
+ (instancetype)actionWithIdentifier:(NSString*)identifier
                               title:(NSString*)title
                             options:(UNNotificationActionOptions)options;
@end

@interface UNNotificationCategory : NSObject
+ (instancetype)categoryWithIdentifier:(NSString*)identifier
                               actions:(NSArray<UNNotificationAction*>*)actions
                     intentIdentifiers:(NSArray<NSString*>*)intentIdentifiers
                               options:(UNNotificationCategoryOptions)options;
@end

@class UNUserNotificationCenter;

@protocol UNUserNotificationCenterDelegate <NSObject>
@optional
- (void)userNotificationCenter:(UNUserNotificationCenter*)center
       willPresentNotification:(UNNotification*)notification
         withCompletionHandler:(void (^)(UNNotificationPresentationOptions))completionHandler;
- (void)userNotificationCenter:(UNUserNotificationCenter*)center
    didReceiveNotificationResponse:(UNNotificationResponse*)response
             withCompletionHandler:(void (^)(void))completionHandler;
@end

@interface UNUserNotificationCenter : NSObject
@property(weak) id<UNUserNotificationCenterDelegate> delegate;
+ (UNUserNotificationCenter*)currentNotificationCenter;
- (void)requestAuthorizationWithOptions:(UNAuthorizationOptions)options
                      completionHandler:(void (^)(BOOL granted, NSError* error))handler;
- (void)setNotificationCategories:(NSSet<UNNotificationCategory*>*)categories;
- (void)addNotificationRequest:(UNNotificationRequest*)request
         withCompletionHandler:(void (^)(NSError* error))handler;
@end
