#include "platform/Workspace.h"

#include "tests/session/support/Browser.h"
#include "tests/session/support/ScriptFile.h"
#include "tests/support/LogLines.h"
#include "tests/support/ScopedVariable.h"
#include "tests/support/WaitUntil.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTemporaryFile>

#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <optional>

namespace
{

/// One default program for all tests: Qt looks for it only once.
class WorkspaceTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        browser = std::make_unique<Browser>();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        browser->addTo(environment);
        path.emplace("PATH", environment.value(QStringLiteral("PATH")).toLocal8Bit());
    }
    static void TearDownTestSuite()
    {
        path.reset();
        browser.reset();
    }

    /// True once one thing more has been opened, and that was this.
    [[nodiscard]] bool opens(const QByteArray &what) const
    {
        return waitUntil([&] { return browser->opened().size() > before; }) &&
               browser->opened().mid(before) == QByteArrayList{what};
    }

    static std::unique_ptr<Browser> browser;
    static std::optional<ScopedVariable> path;
    const qsizetype before = browser->opened().size();
};

std::unique_ptr<Browser> WorkspaceTest::browser;
std::optional<ScopedVariable> WorkspaceTest::path;

TEST_F(WorkspaceTest, OpensAFileThatIsThere)
{
    QTemporaryFile file;
    ASSERT_TRUE(file.open());
    Workspace::openFile(file.fileName());
    EXPECT_TRUE(opens("file://" + file.fileName().toUtf8())) << browser->opened().join('|').constData();
}

TEST_F(WorkspaceTest, RunsAProgramAndDoesNotOpenIt)
{
    const QTemporaryDir folder;
    const QString program = folder.filePath(QStringLiteral("program"));
    const QString trace = folder.filePath(QStringLiteral("trace"));
    writeScript(program, "cd \"${0%/*}\"\necho \"$#\" >part\nmv part trace");
    Workspace::openFile(program);
    ASSERT_TRUE(waitUntil([&] { return QFile::exists(trace); }));
    QFile written(trace);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_EQ(written.readAll(), "0\n") << "it gets no arguments";
    Workspace::openUrl(QStringLiteral("http://127.0.0.1/after"));
    EXPECT_TRUE(opens("http://127.0.0.1/after")) << browser->opened().join('|').constData();
}

#ifdef Q_OS_LINUX
TEST_F(WorkspaceTest, HandsNoIgnoredSignalDownToWhatItRuns)
{
    const QTemporaryDir folder;
    const QString program = folder.filePath(QStringLiteral("program"));
    const QString trace = folder.filePath(QStringLiteral("trace"));
    writeScript(program, "cd \"${0%/*}\"\ngrep SigIgn: /proc/self/status >part\nmv part trace");
    const auto before = std::signal(SIGPIPE, SIG_IGN); // As in the agent.
    Workspace::openFile(program);
    const bool hasRun = waitUntil([&] { return QFile::exists(trace); });
    std::signal(SIGPIPE, before);
    ASSERT_TRUE(hasRun);
    QFile ignored(trace);
    ASSERT_TRUE(ignored.open(QIODevice::ReadOnly));
    bool isNumber = false;
    const qulonglong signals = ignored.readAll().simplified().split(' ').last().toULongLong(&isNumber, 16);
    ASSERT_TRUE(isNumber);
    EXPECT_EQ(signals & (1ULL << (SIGPIPE - 1)), 0U);
}
#endif

TEST_F(WorkspaceTest, SaysInTheLogWhatItCouldNotOpen)
{
    const QTemporaryDir folder;
    const QString program = folder.filePath(QStringLiteral("program"));
    QFile script(program);
    ASSERT_TRUE(script.open(QIODevice::WriteOnly));
    script.write("#!/nowhere/interpreter\n");
    ASSERT_TRUE(script.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
    script.close();
    LogLines log;
    Workspace::openFile(program);
    Workspace::openFile(QStringLiteral("/nowhere/kivsettings"));
    Workspace::openUrl(QStringLiteral("support.html"));
    const std::string name = program.toStdString();
    EXPECT_EQ(log.takeWarnings(),
              (std::vector<std::string>{"kiv.agent: cannot run \"" + name + "\"",
                                        "kiv.agent: cannot open \"/nowhere/kivsettings\" which does not exist",
                                        "kiv.agent: cannot open \"support.html\" which is no address"}));
}

TEST_F(WorkspaceTest, LeavesAFileThatIsNotThereAloneAndATextThatIsNoAddress)
{
    Workspace::openFile(QStringLiteral("/nowhere/preferences.prefPane"));
    Workspace::openUrl(QStringLiteral("not an address"));
    Workspace::openUrl(QStringLiteral("support.html"));
    Workspace::openUrl(QStringLiteral("http://[::"));
    Workspace::openUrl(QString());
    Workspace::openUrl(QStringLiteral("http://127.0.0.1/support"));
    EXPECT_TRUE(opens("http://127.0.0.1/support")) << browser->opened().join('|').constData();
}

} // namespace
