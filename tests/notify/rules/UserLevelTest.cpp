#include "notify/rules/UserLevel.h"

#include <QProcess>

#include <gtest/gtest.h>

#include <fstream>
#include <unistd.h>

namespace
{

using Names = std::vector<std::string>;

struct Case {
    std::string login;
    Names admin;
    Names wheel;
    bool isAdmin;
};

const Case cases[] = {
    {"ann", {}, {}, false},
    {"ann", {"ann"}, {}, true},
    {"ann", {}, {"ann"}, true},
    {"ann", {"root", "bob", "ann"}, {}, true},
    {"ann", {"bob"}, {"root", "ann"}, true},
    {"ann", {"bob"}, {"root"}, false},
    {"ann", {"Ann", "anna", "an", " ann", ""}, {"ANN"}, false},
    {"", {"ann"}, {}, false},
    {"gr\xC3\xBC\xC3\x9F", {"gr\xC3\xBC\xC3\x9F"}, {}, true},
};

QString output(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished();
    return QString::fromLocal8Bit(process.readAllStandardOutput()).trimmed();
}

} // namespace

TEST(UserLevel, IsAdminForAListedMemberOfEitherGroup)
{
    for (const Case &c : cases) {
        EXPECT_EQ(isAdminLevelUser(c.login, c.admin, c.wheel), c.isAdmin) << c.login;
    }
}

TEST(UserDatabase, KnowsTheLoginNameOfTheProcess)
{
    const std::optional<std::string> login = UserDatabase::system().loginName();
    const QString expected = output(QStringLiteral("id"), {QStringLiteral("-run")});
    if (expected.isEmpty()) {
        EXPECT_EQ(login, std::nullopt);
    } else {
        EXPECT_EQ(login, expected.toStdString());
    }
}

TEST(UserDatabase, KnowsWhoLoggedInAndNotWhoseRightsTheProcessHas)
{
    if (::getuid() != 0) {
        GTEST_SKIP() << "only root can act as another user";
    }
    constexpr uid_t somebody = 65534;
    const std::optional<std::string> login = UserDatabase::system().loginName();
    ASSERT_EQ(::seteuid(somebody), 0);
    const std::optional<std::string> actingAsSomebody = UserDatabase::system().loginName();
    ASSERT_EQ(::seteuid(0), 0);
    EXPECT_EQ(actingAsSomebody, login);
}

TEST(UserDatabase, ListsTheMembersOfEveryGroupOfTheGroupFile)
{
    std::ifstream file("/etc/group");
    int groups = 0;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('#')) {
            continue; // macOS begins the file with a few.
        }
        ++groups;
        const QStringList fields = QString::fromStdString(line).split(u':');
        ASSERT_EQ(fields.size(), 4) << line;
        Names expected;
        for (const QString &member : fields[3].split(u',', Qt::SkipEmptyParts)) {
            expected.push_back(member.toStdString());
        }
        EXPECT_EQ(UserDatabase::system().groupMembers(fields[0].toStdString()), expected) << line;
    }
    EXPECT_GT(groups, 0);
}

TEST(UserDatabase, FindsNoMembersInAMissingGroup)
{
    EXPECT_EQ(UserDatabase::system().groupMembers("no-such-group"), Names());
}
