#pragma once

#include "platform/linux/include/XConnection.h"
#include "platform/linux/screen/windows/WindowNames.h"

#include <QRasterWindow>

/// A window that window managers have, to say what they are.
class NamedWindowManager final
{
public:
    explicit NamedWindowManager(const char *name)
    {
        setWindowName(m_window.winId(), name);
        const auto id = static_cast<xcb_window_t>(m_window.winId());
        xcb_change_property(XConnection::get(), XCB_PROP_MODE_REPLACE, XConnection::screen()->root, property(),
                            XCB_ATOM_WINDOW, 32, 1, &id);
    }
    ~NamedWindowManager() { xcb_delete_property(XConnection::get(), XConnection::screen()->root, property()); }
    NamedWindowManager(const NamedWindowManager &) = delete;
    NamedWindowManager &operator=(const NamedWindowManager &) = delete;

private:
    static xcb_atom_t property() { return XConnection::atom("_NET_SUPPORTING_WM_CHECK"); }

    QRasterWindow m_window;
};
