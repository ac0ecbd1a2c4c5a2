#pragma once

#include <QString>
#include <QStringList>

#include <vector>

/// The lines of an alert's message, each split into its columns: a run of tabs, however long, begins the next column,
/// so that a line that begins with tabs has an empty first one.
[[nodiscard]] std::vector<QStringList> alertColumns(const QString &message);

/// The message as it is read out: a space between columns, and no tab. A first column that is empty is left out.
[[nodiscard]] QString alertWords(const QString &message);

/// The message as a format without arguments shows it: "%%" is a percent sign, every other directive stands as it is.
[[nodiscard]] QString withoutFormatDirectives(const QString &format);
