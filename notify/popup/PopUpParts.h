#pragma once

#include <QRect>
#include <QString>

#include <cstdint>

class QLabel;
class QPushButton;
class QWidget;

/// The parts of a pop-up beside its text. They are made as children of `parent`, and placed at `frame` in its
/// coordinates whenever the layout has changed. A text that is too long for its frame ends in an ellipsis; assistive
/// technology reads it whole. Main thread only.

/// Takes no focus when it is clicked: a pop-up has the keyboard only when its user has asked for that.
[[nodiscard]] QPushButton *newPopUpButton(const QString &text, QWidget *parent);
void placePopUpButton(QPushButton &button, const QRect &frame);

[[nodiscard]] QLabel *newPopUpIcon(QWidget *parent);
/// The picture of the message's type; an empty place when there is none.
void placePopUpIcon(QLabel &icon, std::int32_t messageType, const QRect &frame);

[[nodiscard]] QLabel *newPopUpTitle(const QString &text, QWidget *parent);
void placePopUpTitle(QLabel &title, const QRect &frame);
