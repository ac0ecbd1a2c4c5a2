#pragma once

/// While it exists, exit() ends the process at once, with status 1, and takes nothing apart. Qt calls it from the event
/// loop when the X server has died: what the program has built up would then wait for threads that are no more, and the
/// process would never end. One at a time; main thread only.
class SuddenExit final
{
public:
    /// Counts for what is destroyed at exit and exists already: what is made later goes first.
    SuddenExit();
    ~SuddenExit();
    SuddenExit(const SuddenExit &) = delete;
    SuddenExit &operator=(const SuddenExit &) = delete;
};
