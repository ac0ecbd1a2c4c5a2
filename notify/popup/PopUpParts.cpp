#include "notify/popup/PopUpParts.h"

#include "notify/popup/MessageTypeIcon.h"
#include "notify/popup/accessible/AccessiblePopUp.h"
#include "platform/text/SystemFont.h"

#include <QLabel>
#include <QPushButton>

namespace
{

/// The whole text is the widget's accessible name. The desktop may have another font since the last time.
template <typename Widget>
void place(Widget &widget, const QRect &frame, int padding, QFont::Weight weight)
{
    widget.setGeometry(frame);
    widget.setFont(systemFont(weight, widget.accessibleName()));
    widget.setText(widget.fontMetrics().elidedText(widget.accessibleName(), Qt::ElideRight, frame.width() - padding));
}

} // namespace

QPushButton *newPopUpButton(const QString &text, QWidget *parent)
{
    auto *button = new QPushButton(parent);
    button->setFocusPolicy(Qt::NoFocus);
    button->setAutoDefault(false);
    button->setAccessibleName(text);
    return button;
}

void placePopUpButton(QPushButton &button, const QRect &frame)
{
    constexpr int padding = 12;
    place(button, frame, padding, QFont::Normal);
}

QLabel *newPopUpIcon(QWidget *parent)
{
    auto *label = new QLabel(parent);
    label->setAccessibleName(QStringLiteral("Message type"));
    return label;
}

void placePopUpIcon(QLabel &icon, std::int32_t messageType, const QRect &frame)
{
    icon.setGeometry(frame);
    icon.setPixmap(messageTypeIcon(messageType, frame.height(), icon.devicePixelRatio()));
}

QLabel *newPopUpTitle(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(parent);
    AccessiblePopUp::makeHeading(*label);
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    label->setAccessibleName(text);
    return label;
}

void placePopUpTitle(QLabel &title, const QRect &frame)
{
    place(title, frame, 0, QFont::Bold);
}
