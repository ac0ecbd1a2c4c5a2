#pragma once

#include "platform/files/FileDescriptor.h"

#include <QString>

#include <chrono>

/// Keeps other programs of ours out of a folder while a file in it is read, changed and written back as one step; while
/// it lives. It locks the folder and not the file, which may be missing or take another's place; flock(2) leaves
/// nothing behind, whatever becomes of the program. Only who asks for it is kept out.
class FolderLock final
{
public:
    /// Waits for whoever has it, so long at most: who is stopped in the middle, or a file system that knows no locks,
    /// must not stop us.
    explicit FolderLock(const QString &folder, std::chrono::milliseconds patience = std::chrono::milliseconds(500));

    [[nodiscard]] bool isHeld() const noexcept { return m_isHeld; }

private:
    FileDescriptor m_folder;
    bool m_isHeld = false;
};
