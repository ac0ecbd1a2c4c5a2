#include "platform/linux/workarounds/memory/FlatButtons.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOptionButton>

namespace
{

bool isDark(const QColor &colour)
{
    return colour.lightness() < 128;
}

/// `colour`, as many per cent nearer to the opposite of itself: darker when it is light.
QColor setOff(const QColor &colour, int percent)
{
    return isDark(colour) ? colour.lighter(100 + 2 * percent) : colour.darker(100 + percent);
}

QColor faceOf(const QStyleOption &option)
{
    const QColor button = option.palette.color(QPalette::Button);
    if (option.state & (QStyle::State_Sunken | QStyle::State_On)) {
        return setOff(button, 14);
    }
    const bool isUnderMouse = option.state & QStyle::State_MouseOver && option.state & QStyle::State_Enabled;
    return isUnderMouse ? setOff(button, 4) : button;
}

/// The default button's and the focused one's stands out.
QColor outlineOf(const QStyleOption &option)
{
    const auto *button = qstyleoption_cast<const QStyleOptionButton *>(&option);
    const bool isDefault = button && button->features & QStyleOptionButton::DefaultButton;
    const bool hasFocus = option.state & QStyle::State_HasFocus && option.state & QStyle::State_KeyboardFocusChange;
    return isDefault || hasFocus ? option.palette.color(QPalette::Highlight)
                                 : setOff(option.palette.color(QPalette::Window), 35);
}

} // namespace

void FlatButtons::use()
{
    QApplication::setStyle(new FlatButtons);
}

void FlatButtons::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                                const QWidget *widget) const
{
    if (element != PE_PanelButtonCommand) {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        return;
    }
    constexpr qreal radius = 2.5;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setBrush(faceOf(*option));
    painter->setPen(outlineOf(*option));
    // A line through the middle of the outermost pixels.
    painter->drawRoundedRect(QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    painter->restore();
}
