#include "notify/rules/UserLevel.h"

#include <algorithm>
#include <grp.h>
#include <pwd.h>
#include <unistd.h>

UserDatabase UserDatabase::system()
{
    return {
        .loginName = []() -> std::optional<std::string> {
            const passwd *entry = ::getpwuid(::getuid());
            return entry ? std::optional<std::string>(entry->pw_name) : std::nullopt;
        },
        .groupMembers =
            [](const std::string &name) {
                std::vector<std::string> members;
                if (const group *entry = ::getgrnam(name.c_str())) {
                    for (char **member = entry->gr_mem; *member; ++member) {
                        members.emplace_back(*member);
                    }
                }
                return members;
            },
    };
}

bool isAdminLevelUser(const std::string &login, std::span<const std::string> adminMembers,
                      std::span<const std::string> wheelMembers)
{
    const auto contains = [&](std::span<const std::string> members) {
        return std::find(members.begin(), members.end(), login) != members.end();
    };
    return contains(adminMembers) || contains(wheelMembers);
}
