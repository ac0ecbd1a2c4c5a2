#include "platform/linux/item/WindowPicture.h"

#include "platform/linux/include/XConnection.h"

#include <cstring>

QImage pictureOf(xcb_window_t window, const QRect &area, const XVisual &visual)
{
    QImage picture(area.size(), visual.format);
    xcb_connection_t *x = XConnection::get();
    const auto cookie = xcb_get_image(x, XCB_IMAGE_FORMAT_Z_PIXMAP, window, static_cast<std::int16_t>(area.x()),
                                      static_cast<std::int16_t>(area.y()), static_cast<std::uint16_t>(area.width()),
                                      static_cast<std::uint16_t>(area.height()), ~0U);
    const XcbReply<xcb_get_image_reply_t> image(xcb_get_image_reply(x, cookie, nullptr));
    if (!image || xcb_get_image_data_length(image.get()) < picture.sizeInBytes()) {
        return {};
    }
    std::memcpy(picture.bits(), xcb_get_image_data(image.get()), static_cast<std::size_t>(picture.sizeInBytes()));
    return picture;
}

void putPicture(xcb_window_t window, QPoint place, const QImage &picture, const XVisual &visual)
{
    xcb_connection_t *x = XConnection::get();
    const auto ignoreError = [x](xcb_void_cookie_t cookie) { xcb_discard_reply(x, cookie.sequence); };
    const xcb_gcontext_t context = xcb_generate_id(x);
    ignoreError(xcb_create_gc_checked(x, context, window, 0, nullptr));
    ignoreError(
        xcb_put_image_checked(x, XCB_IMAGE_FORMAT_Z_PIXMAP, window, context,
                              static_cast<std::uint16_t>(picture.width()), static_cast<std::uint16_t>(picture.height()),
                              static_cast<std::int16_t>(place.x()), static_cast<std::int16_t>(place.y()), 0,
                              visual.depth, static_cast<std::uint32_t>(picture.sizeInBytes()), picture.constBits()));
    ignoreError(xcb_free_gc_checked(x, context));
    xcb_flush(x);
}
