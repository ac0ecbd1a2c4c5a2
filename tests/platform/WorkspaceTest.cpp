#include "platform/Workspace.h"

#include "tests/session/Browser.h"
#include "tests/support/ScopedVariable.h"
#include "tests/support/WaitUntil.h"

#include <QTemporaryFile>

#include <gtest/gtest.h>

#include <optional>

namespace
{

class WorkspaceTest : public testing::Test
{
protected:
    WorkspaceTest()
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        browser.addTo(environment);
        path.emplace("PATH", environment.value(QStringLiteral("PATH")).toLocal8Bit());
    }

    [[nodiscard]] bool opens(const QByteArray &what)
    {
        return waitUntil([&] { return !browser.opened().isEmpty(); }) && browser.opened() == QByteArrayList{what};
    }

    Browser browser;
    std::optional<ScopedVariable> path;
};

TEST_F(WorkspaceTest, OpensAFileThatIsThere)
{
    QTemporaryFile file;
    ASSERT_TRUE(file.open());
    Workspace::openFile(file.fileName());
    EXPECT_TRUE(opens("file://" + file.fileName().toUtf8())) << browser.opened().join('|').constData();
}

TEST_F(WorkspaceTest, LeavesAFileThatIsNotThereAloneAndATextThatIsNoAddress)
{
    Workspace::openFile(QStringLiteral("/nowhere/preferences.prefPane"));
    Workspace::openUrl(QStringLiteral("not an address"));
    Workspace::openUrl(QStringLiteral("http://[::"));
    Workspace::openUrl(QString());
    Workspace::openUrl(QStringLiteral("http://127.0.0.1/support"));
    EXPECT_TRUE(opens("http://127.0.0.1/support")) << browser.opened().join('|').constData();
}

} // namespace
