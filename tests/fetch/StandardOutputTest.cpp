#include "fetch/StandardOutput.h"

#include "tests/support/UnreadTerminal.h"

#include <gtest/gtest.h>

TEST(StandardOutput, DoesNotKeepTheProgramWhenNobodyReadsTheTerminalThatIsItsStandardError)
{
    UnreadTerminal terminal;
    EXPECT_TRUE(terminal.letsGo([] {
        for (int line = 0; line < 1000; ++line) {
            sayOnStandardError(std::string(100, 'x'));
        }
    }));
    EXPECT_EQ(terminal.firstBytes().substr(0, 12), "kivfetch: xx");
    EXPECT_TRUE(terminal.isStillOneThatWaits()) << "the shell has it, too";
}
