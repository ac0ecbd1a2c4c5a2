#pragma once

#include "platform/linux/include/XConnection.h"

#include <array>

/// What a window manager says that panels and shells leave to windows.
class PublishedWorkArea final
{
public:
    explicit PublishedWorkArea(const std::array<std::uint32_t, 4> &area)
    {
        xcb_change_property(XConnection::get(), XCB_PROP_MODE_REPLACE, XConnection::screen()->root, property(),
                            XCB_ATOM_CARDINAL, 32, area.size(), area.data());
    }
    ~PublishedWorkArea() { xcb_delete_property(XConnection::get(), XConnection::screen()->root, property()); }
    PublishedWorkArea(const PublishedWorkArea &) = delete;
    PublishedWorkArea &operator=(const PublishedWorkArea &) = delete;

private:
    static xcb_atom_t property() { return XConnection::atom("_NET_WORKAREA"); }
};
