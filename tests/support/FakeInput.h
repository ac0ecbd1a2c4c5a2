#pragma once

#include <QPoint>

#include <cstdint>

/// The mouse of the test's X server, moved and pressed through XTEST as a hand would, from a connection of its own.
/// Coordinates are those of the root window. Every call returns once the server has taken the input.
namespace FakeInput
{

void moveTo(QPoint point);
void press(std::uint8_t button = 1);
void release(std::uint8_t button = 1);
void click(QPoint point, std::uint8_t button = 1);

} // namespace FakeInput
