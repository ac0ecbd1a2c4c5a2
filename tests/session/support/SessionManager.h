#pragma once

#include <QProcessEnvironment>

#include <memory>

/// An X session manager of the test's own, which programs join at their start. It asks them to save their state and
/// ends the session, as a desktop does when its user logs out.
class SessionManager final
{
public:
    /// A test failure when it cannot be joined.
    SessionManager();
    ~SessionManager();

    /// Has programs of this environment join.
    void addTo(QProcessEnvironment &environment) const;

    /// Has the one program that has joined, or soon will, save its state, and returns once it says that it has. False,
    /// with a test failure, when it does not.
    bool saveState();
    /// The same at the end of a session, which the user then does not want after all.
    bool beginLogOutAndCancel();
    /// The same at the end of a session; then tells the program to end.
    bool logOut();
    /// Goes without a word, as one that is killed. False, with a test failure, when no program has joined.
    bool die();

private:
    struct Protocol;
    bool waitForClient();
    bool haveSaved(bool sessionEnds);

    std::unique_ptr<Protocol> m_protocol;
};
