#include "platform/screen/TopEdge.h"

#include "platform/MainScreen.h"
#include "platform/linux/include/XConnection.h"
#include "platform/linux/screen/windows/StandingItem.h"
#include "platform/linux/screen/windows/TopReach.h"
#include "platform/linux/screen/windows/WorkArea.h"

#include <array>
#include <cmath>
#include <set>
#include <vector>

namespace
{

/// The top-level windows at some points of the column's uppermost part: a panel need not go from side to side, nor
/// touch the edge.
std::vector<QRect> windowsAtTheTop(xcb_connection_t *x, const QRect &column)
{
    const xcb_window_t root = XConnection::screen()->root;
    std::vector<xcb_translate_coordinates_cookie_t> points;
    for (const int line : {1, column.height() / 2, column.height() - 1}) {
        for (const int left : {column.left(), column.center().x(), column.right()}) {
            points.push_back(xcb_translate_coordinates(x, root, root, static_cast<std::int16_t>(left),
                                                       static_cast<std::int16_t>(column.top() + line)));
        }
    }
    std::set<xcb_window_t> found;
    for (const xcb_translate_coordinates_cookie_t &point : points) {
        const XcbReply<xcb_translate_coordinates_reply_t> reply(xcb_translate_coordinates_reply(x, point, nullptr));
        if (reply && reply->child != XCB_NONE) {
            found.insert(reply->child);
        }
    }
    std::vector<xcb_get_geometry_cookie_t> questions;
    questions.reserve(found.size());
    for (const xcb_window_t window : found) {
        questions.push_back(xcb_get_geometry(x, window));
    }
    std::vector<QRect> windows;
    for (const xcb_get_geometry_cookie_t &question : questions) {
        if (const XcbReply<xcb_get_geometry_reply_t> reply(xcb_get_geometry_reply(x, question, nullptr)); reply) {
            windows.emplace_back(reply->x, reply->y, reply->width + 2 * reply->border_width,
                                 reply->height + 2 * reply->border_width);
        }
    }
    return windows;
}

} // namespace

namespace TopEdge
{

struct Question::Private {
    WorkAreaQuestion workArea;
};

Question::Question()
    : d(XConnection::get() ? std::make_unique<Private>() : nullptr)
{
}

Question::~Question() = default;

float Question::reach(float left, float right)
{
    const ScreenCoordinates screen = MainScreen::coordinates();
    if (!d || screen.mainScreen.isEmpty()) {
        return 0;
    }
    // Above this line nothing of this program's lies but its item: it is where pop-ups begin.
    constexpr float line = 30;
    const float top = screen.frame().size.height;
    const QRect column = screen.toDevice(NSRect{{left, top - line}, {right - left, line}});
    const std::optional<QRect> workArea = d->workArea.answer();
    const std::vector<QRect> windows = workArea ? std::vector<QRect>() : windowsAtTheTop(XConnection::get(), column);
    return static_cast<float>(topReach(screen.mainScreen, column, workArea, windows, StandingItem::place()) /
                              screen.ratio);
}

} // namespace TopEdge
