#pragma once

#include <QString>

/// Where the running program's bundle lies. Null strings: the system does not tell.
struct MainBundlePath {
    QString resources;       ///< The folder with its resources.
    QString informationFile; ///< Its Info.plist.
    QString executables;     ///< The folder with its helper programs.
};

/// Needs the application object. Main thread only.
[[nodiscard]] MainBundlePath mainBundlePath();
