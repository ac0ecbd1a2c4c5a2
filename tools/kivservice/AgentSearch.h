#pragma once

#include <QStringList>

#include <sys/types.h>
#include <vector>

/// The processes among the owners of these bus names that are running agents, in ascending order. An agent is known by
/// its event name on the bus and by its program, since every program of the link owns such a name.
[[nodiscard]] std::vector<pid_t> agentsAmong(const QStringList &busNames);
