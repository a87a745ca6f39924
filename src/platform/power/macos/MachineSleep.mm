#include "platform/power/MachineSleep.h"

#import <AppKit/AppKit.h>

namespace {

class WorkspaceSleep final : public MachineSleep
{
public:
    WorkspaceSleep()
    {
        NSNotificationCenter *center = NSWorkspace.sharedWorkspace.notificationCenter;
        m_begins = [center addObserverForName:NSWorkspaceWillSleepNotification
                                       object:nil
                                        queue:NSOperationQueue.mainQueue
                                   usingBlock:^(NSNotification *) { Q_EMIT begins(); }];
        m_ended = [center addObserverForName:NSWorkspaceDidWakeNotification
                                      object:nil
                                       queue:NSOperationQueue.mainQueue
                                  usingBlock:^(NSNotification *) { Q_EMIT ended(); }];
    }

    ~WorkspaceSleep() override
    {
        allow();
        [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:m_begins];
        [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:m_ended];
    }

    void prevent(const QString &reason) override
    {
        if (!m_activity)
            m_activity = [NSProcessInfo.processInfo beginActivityWithOptions:NSActivityUserInitiated
                                                                      reason:reason.toNSString()];
    }

    void allow() override
    {
        if (m_activity)
            [NSProcessInfo.processInfo endActivity:m_activity];
        m_activity = nil;
    }

private:
    id<NSObject> m_activity = nil;
    id m_begins = nil;
    id m_ended = nil;
};

} // namespace

std::unique_ptr<MachineSleep> MachineSleep::ofSystem()
{
    return std::make_unique<WorkspaceSleep>();
}
