#include "tests/session/support/ScriptFile.h"

#include <QFile>

#include <gtest/gtest.h>

void writeScript(const QString &path, const QByteArray &commands)
{
    QFile file(path);
    const bool written = file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
                         file.write("#!/bin/sh\n" + commands + '\n') > 0 &&
                         file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    EXPECT_TRUE(written) << "cannot write " << qPrintable(path);
}
