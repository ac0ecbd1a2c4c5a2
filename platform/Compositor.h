#pragma once

#include <QWidget>

#include <cstdint>

/// The compositor: the program that blends windows over each other. Without one no window is translucent. Main thread
/// only.
namespace Compositor
{

/// Whether a compositor runs. The constructor sends the question to the window system, and isRunning() waits for the
/// answer, so that the round trip goes on while something else is done.
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

/// Tells the compositor that the window, which has been created, paints its own shadow, `extent` device-independent
/// pixels wide on every side, and needs no other.
void announceShadow(QWidget &window, int extent);

} // namespace Compositor
