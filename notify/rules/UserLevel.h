#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// The questions to the system's user database. Names are bytes, as the system keeps them.
struct UserDatabase {
    /// The login name of the process's real user; nothing when the database does not know it.
    std::function<std::optional<std::string>()> loginName;
    /// The members that the group of that name lists; none when there is no such group. Users whose primary group it is
    /// are not among them.
    std::function<std::vector<std::string>(const std::string &group)> groupMembers;

    /// The database of this system. Its functions are for the main thread only.
    [[nodiscard]] static UserDatabase system();
};

/// Whether `login` is, byte for byte, a listed member of the group "admin" or else of the group "wheel". Reentrant.
[[nodiscard]] bool isAdminLevelUser(const std::string &login, std::span<const std::string> adminMembers,
                                    std::span<const std::string> wheelMembers);
