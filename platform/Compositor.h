#pragma once

#include <QWidget>

#include <cstdint>

/// The program that blends windows over each other, without which nothing in a window is translucent. Main thread only.
namespace Compositor
{

/// Whether one runs. Asked when this is made, and waited for when the answer is wanted, so that what is done in between
/// costs no time: the answer takes a round to the window system.
class Question final
{
public:
    Question();
    ~Question();
    Question(const Question &) = delete;
    Question &operator=(const Question &) = delete;

    /// To be called once: the answer is not kept.
    [[nodiscard]] bool isRunning();

private:
    /// What the window system calls it; 0 when nothing has been asked.
    [[maybe_unused]] std::uint32_t m_request = 0;
};

/// Tells it that the window, which has been created, paints its own shadow, `extent` device-independent pixels wide on
/// every side, and needs no other.
void announceShadow(QWidget &window, int extent);

} // namespace Compositor
