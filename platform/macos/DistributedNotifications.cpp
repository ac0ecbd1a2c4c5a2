#include "platform/DistributedNotifications.h"

#include "platform/SystemCallback.h"
#include "platform/macos/CoreFoundationObject.h"

#include <utility>

namespace
{

CoreFoundationObject newString(const QString &text)
{
    return CoreFoundationObject(
        CFStringCreateWithCString(kCFAllocatorDefault, text.toUtf8().constData(), kCFStringEncodingUTF8));
}

class CentreObserver final : public DistributedNotifications::Observer
{
public:
    CentreObserver(const QString &name, std::function<void()> callback)
        : m_callback(std::move(callback))
    {
        const CoreFoundationObject ownName = newString(name);
        // At once, also while the agent is not the active application, which it never is.
        CFNotificationCenterAddObserver(CFNotificationCenterGetDistributedCenter(), this, &onPosted,
                                        static_cast<CFStringRef>(ownName.get()), nullptr,
                                        CFNotificationSuspensionBehaviorDeliverImmediately);
    }

    ~CentreObserver() override
    {
        CFNotificationCenterRemoveEveryObserver(CFNotificationCenterGetDistributedCenter(), this);
    }

private:
    static void onPosted(CFNotificationCenterRef, void *observer, CFNotificationName, const void *, CFDictionaryRef)
    {
        inSystemCallback(static_cast<const CentreObserver *>(observer)->m_callback);
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
    const CoreFoundationObject ownName = newString(name);
    // At once, as observers are told.
    CFNotificationCenterPostNotification(CFNotificationCenterGetDistributedCenter(),
                                         static_cast<CFStringRef>(ownName.get()), nullptr, nullptr, true);
    return true;
}
