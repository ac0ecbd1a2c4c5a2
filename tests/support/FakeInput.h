#pragma once

#include <QPoint>

#include <cstdint>

/// Mouse and keyboard of the test's X server, moved and pressed through XTEST as a hand would, from a connection of
/// its own.
/// Coordinates are those of the root window. Every call returns once the server has taken the input.
namespace FakeInput
{

void moveTo(QPoint point);
void press(std::uint8_t button = 1);
void release(std::uint8_t button = 1);
void click(QPoint point, std::uint8_t button = 1);

/// The key of that symbol on the server's keyboard; 0 when it has none.
[[nodiscard]] std::uint8_t keyOf(std::uint32_t symbol);
void tapKey(std::uint8_t key);

} // namespace FakeInput
