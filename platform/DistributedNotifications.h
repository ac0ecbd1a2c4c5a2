#pragma once

#include <QString>

#include <functional>
#include <memory>

/// Notifications that programs of one user's session post for whoever wants to know: a name, no more. On Linux a signal
/// of that name on the session bus (interface com.tamborel.kivune.DistributedNotifications, any path), on macOS the
/// distributed notification centre's. Main thread only.
namespace DistributedNotifications
{

/// Observes until destruction.
class Observer
{
public:
    Observer() = default;
    virtual ~Observer() = default;
    Observer(const Observer &) = delete;
    Observer &operator=(const Observer &) = delete;
};

/// Has `callback` called from the event loop whenever any program posts `name`, and once for all that is posted within
/// a moment after that. What is posted while there is no bus is missed.
[[nodiscard]] std::unique_ptr<Observer> addObserver(const QString &name, std::function<void()> callback);

/// Posts `name` to all observers of the user's session. False when there is no bus to take it; once true, it is on its
/// way even if this program ends at once. Blocks for at most 500 ms.
[[nodiscard]] bool post(const QString &name);

} // namespace DistributedNotifications
