#pragma once

#include <QObject>

#include <functional>
#include <memory>

/// What other programs ask for on behalf of a user without a mouse: that the message on the screen get the keyboard. On
/// Linux by ShowMessage of resources/dbus/com.tamborel.kivune.Menu.xml; on macOS nobody asks. Main thread only.
class MessageRequests final : public QObject
{
    Q_OBJECT

public:
    /// Serves them as long as it lives. `isMessageThere` tells whether there is a message that could get the keyboard:
    /// a request is refused without one. There is no more than one such object.
    explicit MessageRequests(std::function<bool()> isMessageThere);
    ~MessageRequests() override;

Q_SIGNALS:
    /// The message is to get the keyboard. From the event loop, when nobody holds that, or has held it for two seconds.
    void requested();

private:
    class Private;
    std::unique_ptr<Private> d;
};
