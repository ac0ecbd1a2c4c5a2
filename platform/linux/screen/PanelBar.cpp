#include "platform/linux/screen/PanelBar.h"

StatusBar panelBar(const QRect &window, const QRect &screen, double ratio)
{
    // No panel takes more than a quarter of the screen; windows that stand at its edge do.
    const bool isBar = !window.isEmpty() && window.width() > window.height() && window.height() * 4 <= screen.height();
    const auto thickness = static_cast<float>(window.height() / ratio);
    if (isBar && window.top() == screen.top()) {
        return {StatusBar::Edge::Top, thickness};
    }
    if (isBar && window.bottom() == screen.bottom()) {
        return {StatusBar::Edge::Bottom, thickness};
    }
    return {};
}
