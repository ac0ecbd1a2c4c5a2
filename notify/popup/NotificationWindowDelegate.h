#pragma once

class KivNotificationWindow;

/// What a pop-up tells its owner. Main thread only.
class NotificationWindowDelegate
{
public:
    /// The pop-up is closing, for whatever reason. It deletes itself in a later event loop iteration.
    virtual void windowWillClose(KivNotificationWindow &window) = 0;

    /// It lies elsewhere now, or the screens have changed under it.
    virtual void windowDidMove(KivNotificationWindow &window) = 0;

protected:
    ~NotificationWindowDelegate() = default;
};
