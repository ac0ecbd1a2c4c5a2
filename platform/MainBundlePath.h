#pragma once

#include <QString>

/// Where the running program's bundle lies.
struct MainBundlePath {
    QString resources;       ///< The folder with its resources.
    QString informationFile; ///< Its Info.plist.
    QString executables;     ///< The folder with its helper programs.
};

/// Needs the application object. Main thread only.
[[nodiscard]] MainBundlePath mainBundlePath();
