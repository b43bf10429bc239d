#include "platform/desktop/user_notification_center.h"

#import <Foundation/Foundation.h>
#import <UserNotifications/UserNotifications.h>

#include <utility>

#include "core/text.h"

using Respond = std::function<void(const std::string& identifier)>;

/// Called by the notification center on any thread. Outlives its owner while one of its calls runs.
@interface TallowcrestNotificationDelegate : NSObject <UNUserNotificationCenterDelegate>
/// Main thread.
- (void)setRespond:(Respond)respond;
@end

@implementation TallowcrestNotificationDelegate {
    Respond _respond;
}

- (void)setRespond:(Respond)respond {
    _respond = std::move(respond);
}

/// Shows the notification even while the program is in front.
- (void)userNotificationCenter:(UNUserNotificationCenter*)center
       willPresentNotification:(UNNotification*)notification
         withCompletionHandler:(void (^)(UNNotificationPresentationOptions))completionHandler {
    (void)center;
    (void)notification;
    completionHandler(UNNotificationPresentationOptionBanner |
                      UNNotificationPresentationOptionSound);
}

- (void)userNotificationCenter:(UNUserNotificationCenter*)center
    didReceiveNotificationResponse:(UNNotificationResponse*)response
             withCompletionHandler:(void (^)(void))completionHandler {
    (void)center;
    NSString* const action = response.actionIdentifier;
    const bool isPlainClick = [action isEqualToString:UNNotificationDefaultActionIdentifier];
    const std::string identifier =
        isPlainClick ? tallowcrest::NotificationCenter::plainClick : action.UTF8String;
    dispatch_async(dispatch_get_main_queue(), ^{
      // A copy, because the call may replace the handler.
      const Respond respond = self->_respond;
      if (respond) {
          respond(identifier);
      }
      completionHandler();
    });
}

@end

namespace tallowcrest {
namespace {

/// Makes a text of arbitrary bytes printable, because process names are untrusted.
NSString* shown(const std::string& text) {
    return @(replacingControlCharacters(text, "?").c_str());
}

}  // namespace

struct UserNotificationCenter::Objects {
    /// Nil outside a bundle, where asking for the center would terminate the program. Messages to
    /// nil have no effect.
    UNUserNotificationCenter* center = nil;
    TallowcrestNotificationDelegate* delegate = nil;
};

UserNotificationCenter::UserNotificationCenter() : objects_(std::make_unique<Objects>()) {
    if (NSBundle.mainBundle.bundleIdentifier != nil) {
        objects_->center = [UNUserNotificationCenter currentNotificationCenter];
    }
    objects_->delegate = [[TallowcrestNotificationDelegate alloc] init];
    objects_->center.delegate = objects_->delegate;
}

UserNotificationCenter::~UserNotificationCenter() {
    objects_->center.delegate = nil;
    [objects_->delegate setRespond:{}];
}

void UserNotificationCenter::setCategories(std::vector<NotificationCategory> categories) {
    NSMutableSet<UNNotificationCategory*>* const known = [NSMutableSet set];
    for (const NotificationCategory& category : categories) {
        NSMutableArray<UNNotificationAction*>* const actions = [NSMutableArray array];
        for (const NotificationAction& action : category.actions) {
            [actions addObject:[UNNotificationAction
                                   actionWithIdentifier:@(action.identifier.c_str())
                                                  title:@(action.title.c_str())
                                                options:UNNotificationActionOptionForeground]];
        }
        [known addObject:[UNNotificationCategory
                             categoryWithIdentifier:@(category.identifier.c_str())
                                            actions:actions
                                  intentIdentifiers:@[]
                                            options:UNNotificationCategoryOptionNone]];
    }
    [objects_->center setNotificationCategories:known];
}

void UserNotificationCenter::requestAuthorization() {
    // The answer does not matter: without authorization the system shows nothing.
    [objects_->center
        requestAuthorizationWithOptions:UNAuthorizationOptionAlert | UNAuthorizationOptionSound
                      completionHandler:^(BOOL isGranted, NSError* error) {
                        (void)isGranted;
                        (void)error;
                      }];
}

void UserNotificationCenter::post(NotificationContent content) {
    UNMutableNotificationContent* const notification = [[UNMutableNotificationContent alloc] init];
    notification.title = shown(content.title);
    notification.body = shown(content.body);
    notification.categoryIdentifier = @(content.categoryIdentifier.c_str());
    if (content.playsSound) {
        notification.sound = UNNotificationSound.defaultSound;
    }
    UNNotificationRequest* const request =
        [UNNotificationRequest requestWithIdentifier:NSUUID.UUID.UUIDString
                                             content:notification
                                             trigger:nil];
    [objects_->center addNotificationRequest:request withCompletionHandler:nil];
}

void UserNotificationCenter::setResponseHandler(
    std::function<void(const std::string& identifier)> respond) {
    [objects_->delegate setRespond:std::move(respond)];
}

}  // namespace tallowcrest
