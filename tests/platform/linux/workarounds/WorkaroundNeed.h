#pragma once

#include "tests/platform/linux/workarounds/MenuWithMouse.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/WaitUntil.h"

#include <QProcessEnvironment>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>

// Each test of WorkaroundNeed and WorkaroundMemory shows somebody else's bug as it is without our cure
// (platform/linux/workarounds/), and tells whether it is still there. None fails when it has gone: the line that it
// then prints, which ./kiv test repeats at its end, says that the cure can be taken out once no supported system needs
// it.
//
// A program to itself, for the cures cannot be taken back once they are at work.

inline void tell(const char *workaround, bool isNeeded)
{
    std::printf("workaround %s: %s with Qt %s\n", workaround, isNeeded ? "still needed" : "no longer needed",
                qVersion());
    testing::Test::RecordProperty("isNeeded", isNeeded ? "yes" : "no");
}

/// A program without cures (workaround_subject.cpp) on the X server of these tests.
class Subject final
{
public:
    Subject() { m_process.environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb")); }

    [[nodiscard]] QProcessEnvironment &environment() { return m_process.environment; }
    [[nodiscard]] ChildProcess &process() { return m_process; }
    [[nodiscard]] bool start(const QStringList &arguments)
    {
        return m_process.start(QStringLiteral(KIV_WORKAROUND_SUBJECT), arguments);
    }
    /// Whether its event loop has begun.
    [[nodiscard]] bool isUp()
    {
        return waitUntil([this] { return m_process.output().contains("up\n"); });
    }
    [[nodiscard]] bool endsWithin(std::chrono::milliseconds timeout)
    {
        return waitUntil([this] { return !m_process.isRunning(); }, timeout);
    }

private:
    ChildProcess m_process;
};

class WorkaroundNeed : public MenuWithMouse
{
};
