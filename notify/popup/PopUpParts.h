#pragma once

#include <QRect>
#include <QString>

#include <cstdint>

class QPushButton;
class QWidget;

/// The parts of a pop-up beside its text, as children of `parent`, at `frame` in its coordinates. A text that is too
/// long for its frame ends in an ellipsis, and is read out whole. Main thread only.

/// Takes no focus: a pop-up never has the keyboard.
[[nodiscard]] QPushButton *addPopUpButton(const QString &text, const QRect &frame, QWidget *parent);

/// The picture of the message's type; an empty place when there is none.
void addPopUpIcon(std::int32_t messageType, const QRect &frame, QWidget *parent);

void addPopUpTitle(const QString &text, const QRect &frame, QWidget *parent);
