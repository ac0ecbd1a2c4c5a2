#pragma once

/// While it exists, exit() ends the process at once, with status 1, and takes nothing apart. One at a time; main thread
/// only.
///
/// Symptom: Qt calls exit() from the event loop when the X server has died. What the program has built up then waits
///   for threads that are no more, and the process never ends.
/// Of: Qt, the platform xcb, with a connection of QtDBus; seen with 6.4 while objects that QtDBus knows were still
///   destroyed at the end. The call, seen by others: https://github.com/CDrummond/cantata/issues/1066
/// Left out: whatever is destroyed at the end must not wait for anything; else an agent without a session stays for
///   each session that has ended so.
/// Still needed? WorkaroundNeed.SuddenExit tells.
///
/// And from Qt 6.11 on (it was still as above in 6.8), the same event loop is left instead, with status 1: afterLoop
/// then does what exit() did. No report found. Left out: the agent takes its windows apart without a server, and ends
/// with status 0 as if it had been asked to. WorkaroundNeed.LoopThatIsLeft tells.
class SuddenExit final
{
public:
    /// Counts for what is destroyed at exit and exists already: what is made later goes first.
    SuddenExit();
    ~SuddenExit();
    /// To be called with what the event loop has returned: ends the process unless that is 0.
    static void afterLoop(int status);
    SuddenExit(const SuddenExit &) = delete;
    SuddenExit &operator=(const SuddenExit &) = delete;
};
