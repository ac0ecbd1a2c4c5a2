#pragma once

#include <QStringList>

/// What was to be opened: "file " or "address " and which. Linking this takes the place of the real workspace.
extern QStringList openedByWorkspace;
