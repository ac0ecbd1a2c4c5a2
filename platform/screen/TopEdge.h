#pragma once

#include <memory>

/// What lies along the top edge of the main screen, and should not be covered: the panel or the menu bar there, and the
/// status item where it stands by itself. Main thread only.
namespace TopEdge
{

/// How far that reaches down. The constructor sends to the window system what can be asked at once, and reach() waits
/// for the answers, so that the round trip goes on while something else is done.
class Question final
{
public:
    Question();
    ~Question();
    Question(const Question &) = delete;
    Question &operator=(const Question &) = delete;

    /// In points from the top edge, for what goes from `left` to `right` (points from the main screen's left edge); 0
    /// when nothing is in its way. To be called once.
    [[nodiscard]] float reach(float left, float right);

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace TopEdge
