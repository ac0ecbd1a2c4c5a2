#pragma once

#include <QFont>

/// The system's font for texts, in the one size that pop-ups have: 12 points, each a device-independent pixel. Needs
/// the GUI application object. Main thread only.
[[nodiscard]] QFont systemFont(QFont::Weight weight);
