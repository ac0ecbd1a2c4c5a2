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
class SuddenExit final
{
public:
    /// Counts for what is destroyed at exit and exists already: what is made later goes first.
    SuddenExit();
    ~SuddenExit();
    SuddenExit(const SuddenExit &) = delete;
    SuddenExit &operator=(const SuddenExit &) = delete;
};
