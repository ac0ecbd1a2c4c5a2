#pragma once

class KivNotificationWindow;

/// What a pop-up tells its owner. Main thread only.
class NotificationWindowDelegate
{
public:
    /// The pop-up is closing, whatever caused it. It is deleted by itself in a later iteration of the event loop.
    virtual void windowWillClose(KivNotificationWindow &window) = 0;

    /// It lies elsewhere now, or the screens have changed under it.
    virtual void windowDidMove(KivNotificationWindow &window) = 0;

protected:
    ~NotificationWindowDelegate() = default;
};
