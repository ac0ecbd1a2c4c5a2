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

    /// Records that arrive together, such as those of one document: from the construction of this object to its end,
    /// however that comes. Deliveries may lie within one another, and count as the outermost one.
    ///
    /// What a sink saves it saves at the end, once for all of them. To save a queue whenever it has grown by one takes
    /// the square of its length: with a thousand records the only thread would stand still for the better part of a
    /// minute.
    class Delivery final
    {
    public:
        /// `sink` must outlive this object.
        [[nodiscard]] explicit Delivery(NotificationSink &sink)
            : m_sink(sink)
        {
            m_sink.beginDelivery();
        }
        ~Delivery() { m_sink.endDelivery(); }
        Delivery(const Delivery &) = delete;
        Delivery &operator=(const Delivery &) = delete;

    private:
        NotificationSink &m_sink;
    };

    /// Called on the main thread, once for each record in the order of the feed. `record` is never null.
    virtual void enqueueNotification(const std::shared_ptr<KivNotification> &record) = 0;

private:
    /// For a sink that saves nothing there is nothing to do.
    virtual void beginDelivery() {}
    virtual void endDelivery() noexcept {}
};
