#include "platform/DistributedNotifications.h"

#include <Carbon/Carbon.h>

#include <utility>

namespace
{

class CentreObserver final : public DistributedNotifications::Observer
{
public:
    CentreObserver(const QString &name, std::function<void()> callback)
        : m_callback(std::move(callback))
    {
        const CFStringRef cfName = name.toCFString();
        // At once, also while the agent is not the active application, which it never is.
        CFNotificationCenterAddObserver(CFNotificationCenterGetDistributedCenter(), this, &onPosted, cfName, nullptr,
                                        CFNotificationSuspensionBehaviorDeliverImmediately);
        CFRelease(cfName);
    }

    ~CentreObserver() override
    {
        CFNotificationCenterRemoveEveryObserver(CFNotificationCenterGetDistributedCenter(), this);
    }

private:
    static void onPosted(CFNotificationCenterRef, void *observer, CFNotificationName, const void *, CFDictionaryRef)
    {
        static_cast<const CentreObserver *>(observer)->m_callback();
    }

    const std::function<void()> m_callback;
};

} // namespace

std::unique_ptr<DistributedNotifications::Observer>
DistributedNotifications::addObserver(const QString &name, std::function<void()> callback)
{
    return std::make_unique<CentreObserver>(name, std::move(callback));
}

bool DistributedNotifications::post(const QString &name)
{
    const CFStringRef cfName = name.toCFString();
    // At once, as observers are told.
    CFNotificationCenterPostNotification(CFNotificationCenterGetDistributedCenter(), cfName, nullptr, nullptr, true);
    CFRelease(cfName);
    return true;
}
