#include "platform/linux/screen/XVisual.h"

QImage::Format imageFormat(std::uint8_t depth, std::uint32_t redMask)
{
    switch (depth) {
    case 32:
        return redMask == 0xff0000 ? QImage::Format_ARGB32_Premultiplied : QImage::Format_Invalid;
    case 30:
        return redMask == 0x3ff00000 ? QImage::Format_RGB30 : QImage::Format_Invalid;
    case 24:
        return redMask == 0xff0000 ? QImage::Format_RGB32 : QImage::Format_Invalid;
    case 16:
        return redMask == 0xf800 ? QImage::Format_RGB16 : QImage::Format_Invalid;
    case 8:
        return QImage::Format_Indexed8;
    default:
        return QImage::Format_Invalid;
    }
}

std::optional<XVisual> findVisual(xcb_screen_t *screen, xcb_visualid_t id)
{
    for (auto depth = xcb_screen_allowed_depths_iterator(screen); depth.rem > 0; xcb_depth_next(&depth)) {
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem > 0; xcb_visualtype_next(&visual)) {
            if (visual.data->visual_id != id) {
                continue;
            }
            const QImage::Format format = imageFormat(depth.data->depth, visual.data->red_mask);
            if (format == QImage::Format_Invalid) {
                return std::nullopt;
            }
            return XVisual{id, depth.data->depth, format};
        }
    }
    return std::nullopt;
}
