#pragma once

#include "platform/files/FileDescriptor.h"

#include <QString>

#include <chrono>

/// Keeps other programs of ours out of a file while it is read, changed and written back as one step; for as long as it
/// lives. Only who asks for it is kept out (flock(2)), and nothing is left behind, whatever becomes of the program.
class FileLock final
{
public:
    enum class For {
        Reading, ///< Others may read, too.
        Writing  ///< Nobody else may do anything.
    };

    /// Waits for whoever has it, so long at most: a program that is stopped in the middle must not stop us, and anybody
    /// can have it who may read the file. With a patience of 0 it is tried once. A file that is missing, a symbolic
    /// link or not ours to read or write is not locked; nobody waits for it then.
    FileLock(const QString &path, For purpose, std::chrono::milliseconds patience = std::chrono::milliseconds(500));

    [[nodiscard]] bool isHeld() const noexcept { return m_isHeld; }
    /// Whether it is not held since somebody else had it all that time.
    [[nodiscard]] bool isBusy() const noexcept { return m_isBusy; }

private:
    FileDescriptor m_file;
    bool m_isHeld = false;
    bool m_isBusy = false;
};
