#include "notify/popup/PopUpParts.h"

#include "notify/popup/MessageTypeIcon.h"
#include "platform/text/SystemFont.h"

#include <QLabel>
#include <QPushButton>

QPushButton *addPopUpButton(const QString &text, const QRect &frame, QWidget *parent)
{
    auto *button = new QPushButton(parent);
    button->setFont(systemFont(QFont::Normal));
    button->setFocusPolicy(Qt::NoFocus);
    button->setAutoDefault(false);
    button->setGeometry(frame);
    constexpr int padding = 12;
    button->setText(button->fontMetrics().elidedText(text, Qt::ElideRight, frame.width() - padding));
    button->setAccessibleName(text);
    return button;
}

void addPopUpIcon(std::int32_t messageType, const QRect &frame, QWidget *parent)
{
    auto *label = new QLabel(parent);
    label->setGeometry(frame);
    label->setPixmap(messageTypeIcon(messageType, frame.height(), parent->devicePixelRatio()));
    label->setAccessibleName(QStringLiteral("Message type"));
}

void addPopUpTitle(const QString &text, const QRect &frame, QWidget *parent)
{
    auto *label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setFont(systemFont(QFont::Bold));
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    label->setGeometry(frame);
    label->setText(label->fontMetrics().elidedText(text, Qt::ElideRight, frame.width()));
    label->setAccessibleName(text);
}
