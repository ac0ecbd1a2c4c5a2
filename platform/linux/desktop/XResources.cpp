#include "platform/linux/desktop/XResources.h"

#include "platform/linux/include/XConnection.h"

QByteArray askForXResources(xcb_connection_t *x)
{
    constexpr std::uint32_t maxLength = 64 * 1024; // In units of four bytes.
    // All screens have those of the first.
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(x)).data->root;
    const auto cookie = xcb_get_property(x, false, root, XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING, 0, maxLength);
    const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(x, cookie, nullptr));
    return reply ? QByteArray(static_cast<const char *>(xcb_get_property_value(reply.get())),
                              xcb_get_property_value_length(reply.get()))
                 : QByteArray();
}

double xftDpi(const QByteArray &resources)
{
    for (const QByteArray &line : resources.split('\n')) {
        const qsizetype colon = line.indexOf(':');
        if (colon > 0 && line.first(colon).trimmed() == "Xft.dpi") {
            const double dpi = line.mid(colon + 1).trimmed().toDouble();
            return dpi > 0 && dpi < 10'000 ? dpi : 0;
        }
    }
    return 0;
}
