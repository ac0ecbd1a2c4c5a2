#pragma once

#include <QString>

/// Shows a modal informational panel and returns once it has been answered: 1 for the default button, 0 for the
/// alternate, -1 for the other one, -2 when nothing was answered. The last two buttons may be null for none. The status
/// item cannot be pressed meanwhile; events of the service go on being handled.
///
/// The message is a format without arguments: "%%" is shown as a percent sign, and any other directive as it is.
[[nodiscard]] int __run_alert(const QString &title, const QString &message, const QString &defaultButton,
                              const QString &alternateButton = {}, const QString &otherButton = {});
