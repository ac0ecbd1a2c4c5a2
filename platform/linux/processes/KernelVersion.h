#pragma once

#include <QString>
#include <QStringView>

/// The dotted number that a kernel's release begins with: "6.1.0" of "6.1.0-13-amd64"; nil when there is none.
/// Reentrant.
[[nodiscard]] QString kernelVersion(QStringView release);
