#pragma once

#include <QStringList>

/// kivservice settings [KEY [VALUE]]: prints the user's notification settings, each with its key, value and meaning, or
/// one of them; or sets one, and tells the agents of this session bus. Returns the exit status: 1 when the file cannot
/// be read or written, 2 for a key or value that there is not. Needs the application object.
[[nodiscard]] int settingsCommand(const QStringList &arguments);
