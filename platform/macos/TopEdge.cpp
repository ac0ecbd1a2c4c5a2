#include "platform/screen/TopEdge.h"

#include "platform/StatusBar.h"

namespace TopEdge
{

struct Question::Private {
};

Question::Question() = default;
Question::~Question() = default;

// The menu bar, in which every status item is, goes from one side to the other.
float Question::reach(float, float)
{
    return StatusBar::around({}).thickness;
}

} // namespace TopEdge
