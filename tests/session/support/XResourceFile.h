#pragma once

#include "tests/session/support/XClient.h"

/// Sets the X resources of a desktop as xrdb does, in a property of the root window, where they stay.
class XResourceFile final : public XClient
{
public:
    using XClient::XClient;

    void write(const QByteArray &resources)
    {
        xcb_change_property(connection(), XCB_PROP_MODE_REPLACE, root(), XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING, 8,
                            static_cast<std::uint32_t>(resources.size()), resources.constData());
        // The server serves each of its clients in order, but not one after the other.
        const XReply<xcb_get_input_focus_reply_t> reply(
            xcb_get_input_focus_reply(connection(), xcb_get_input_focus(connection()), nullptr));
    }
};
