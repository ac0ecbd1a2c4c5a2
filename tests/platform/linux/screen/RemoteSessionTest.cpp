#include "tests/platform/linux/screen/SessionFacts.h"

namespace
{

TEST(SessionDictionary, IsThatOfARemoteSessionOnADisplayServerForViewers)
{
    // No system bus here, and the display is such a server.
    EXPECT_EQ(sessionFacts(), (SessionFacts{true, false}));
}

} // namespace
