#pragma once

#include "platform/files/FileDescriptor.h"

#include <QString>
#include <QTemporaryDir>

/// A service tool that starts and does not end by itself, in place of what is at `path`. Those that run end with this.
class HungTool final
{
public:
    explicit HungTool(const QString &path);

    [[nodiscard]] bool hasStarted() const;

private:
    [[nodiscard]] QString mark() const { return m_folder.filePath(QStringLiteral("started")); }

    QTemporaryDir m_folder;
    FileDescriptor m_input; ///< What it reads from.
};
