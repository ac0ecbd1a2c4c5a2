#include "tests/session/support/HungTool.h"

#include "tests/session/support/ScriptFile.h"

#include <QFile>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

HungTool::HungTool(const QString &path)
{
    const QByteArray fifo = QFile::encodeName(m_folder.filePath(QStringLiteral("fifo")));
    EXPECT_EQ(::mkfifo(fifo.constData(), 0600), 0);
    m_input = FileDescriptor(::open(fifo.constData(), O_RDWR | O_CLOEXEC));
    writeScript(path, "touch '" + QFile::encodeName(mark()) + "'\nexec cat '" + fifo + "'");
}

bool HungTool::hasStarted() const
{
    return QFile::exists(mark());
}
