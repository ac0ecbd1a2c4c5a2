#pragma once

#include <QString>

#include <functional>
#include <string_view>

/// What logind knows of a session, in its own words.
struct LogindSession {
    QString seat;  ///< "seat0"; empty for a session without screen and keyboard of its own, such as a remote one.
    bool isActive; ///< In front on its seat; always true for a session without one.
    QString state; ///< "opening", "online", "active" or "closing".
};

/// What the session dictionary says of it.
struct SessionState {
    bool isLoginDone;
    bool isOnConsole;
};

[[nodiscard]] SessionState sessionState(const LogindSession &session);

/// Whether an X server is itself a server for remote viewers, by the extensions that it has.
[[nodiscard]] bool isServerForViewers(const std::function<bool(std::string_view)> &hasExtension);
