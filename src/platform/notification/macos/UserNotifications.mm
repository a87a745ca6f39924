#include "platform/notification/NotificationCenter.h"

#import <UserNotifications/UserNotifications.h>

#include <QCoreApplication>
#include <QMetaObject>
#include <QPointer>

// The system calls its delegate on a thread of its own.
@interface NotificationClicks : NSObject <UNUserNotificationCenterDelegate>
@property(nonatomic, copy) void (^onClick)(NSString *key);
@end

@implementation NotificationClicks
- (void)userNotificationCenter:(UNUserNotificationCenter *)center
    didReceiveNotificationResponse:(UNNotificationResponse *)response
             withCompletionHandler:(void (^)(void))done
{
    if ([response.actionIdentifier isEqualToString:UNNotificationDefaultActionIdentifier])
        self.onClick(response.notification.request.identifier);
    done();
}
@end

namespace {

class UserNotifications final : public NotificationCenter
{
public:
    UserNotifications() : m_clicks([[NotificationClicks alloc] init])
    {
        const QPointer<UserNotifications> self(this);
        m_clicks.onClick = ^(NSString *key) {
          const QString clicked = QString::fromNSString(key);
          QMetaObject::invokeMethod(
              qApp,
              [self, clicked] {
                  if (self)
                      Q_EMIT self->activated(clicked, {});
              },
              Qt::QueuedConnection);
        };
        center().delegate = m_clicks;
    }

    ~UserNotifications() override
    {
        center().delegate = nil;
        withdrawAll();
    }

    // The system asks the user for leave at the first one.
    void show(const Notification &notification) override
    {
        UNMutableNotificationContent *content = [[UNMutableNotificationContent alloc] init];
        content.title = notification.title.toNSString();
        content.body = notification.body.toNSString();
        UNNotificationRequest *request =
            [UNNotificationRequest requestWithIdentifier:notification.key.toNSString()
                                                 content:content
                                                 trigger:nil];
        [center() requestAuthorizationWithOptions:UNAuthorizationOptionAlert
                                completionHandler:^(BOOL granted, NSError *) {
                                  if (granted)
                                      [UNUserNotificationCenter.currentNotificationCenter
                                          addNotificationRequest:request
                                           withCompletionHandler:nil];
                                }];
    }

    void withdrawAll() override { [center() removeAllDeliveredNotifications]; }

private:
    static UNUserNotificationCenter *center() { return UNUserNotificationCenter.currentNotificationCenter; }

    NotificationClicks *const m_clicks;
};

} // namespace

std::unique_ptr<NotificationCenter> NotificationCenter::ofDesktop()
{
    return std::make_unique<UserNotifications>();
}
