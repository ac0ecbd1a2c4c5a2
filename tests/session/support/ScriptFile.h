#pragma once

#include <QByteArray>
#include <QString>

/// Writes a program: a shell script of these commands. In place of an older file, if there is one.
void writeScript(const QString &path, const QByteArray &commands);
