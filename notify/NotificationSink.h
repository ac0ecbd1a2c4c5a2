#pragma once

#include <memory>

class KivNotification;

/// Where records go that arrive from outside.
class NotificationSink
{
public:
    NotificationSink() = default;
    virtual ~NotificationSink() = default;
    NotificationSink(const NotificationSink &) = delete;
    NotificationSink &operator=(const NotificationSink &) = delete;

    /// Called on the main thread, once for each record in the order of the feed. `record` is never null.
    virtual void enqueueNotification(const std::shared_ptr<KivNotification> &record) = 0;
};
