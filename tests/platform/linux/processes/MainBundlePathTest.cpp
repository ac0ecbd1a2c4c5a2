#include "platform/data/PropertyList.h"
#include "tests/support/ChildProcess.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace
{

/// Folders with a program and its bundle, as installations have them.
class MainBundle : public testing::Test
{
protected:
    [[nodiscard]] QString path(const QString &name) const { return m_folder.filePath(name); }

    void write(const QString &name, const QByteArray &bytes) const
    {
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path(name)).path()));
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }

    /// What the probe prints when it is started as `program`, line by line.
    static QStringList run(const QString &program)
    {
        ChildProcess probe;
        EXPECT_TRUE(probe.start(program, {}));
        EXPECT_TRUE(probe.process().waitForFinished());
        EXPECT_EQ(probe.exitCode(), 0);
        return QString::fromUtf8(probe.output()).split(u'\n');
    }

    void install(const QString &where, const QString &version) const
    {
        const QString program = path(where + QStringLiteral("/bin/probe"));
        ASSERT_TRUE(QDir().mkpath(QFileInfo(program).path()));
        ASSERT_TRUE(QFile::copy(QStringLiteral(KIV_BUNDLE_PROBE), program));
        write(where + QStringLiteral("/share/kivmenua/Info.plist"),
              PropertyList::toXml(QVariantMap{{QStringLiteral("KIVBuildVersion"), version}}));
        write(where + QStringLiteral("/share/kivmenua/statuson.tiff"), "II*");
    }

private:
    QTemporaryDir m_folder;
};

TEST_F(MainBundle, LiesBesideTheProgramsFolder)
{
    install(QStringLiteral("one"), QStringLiteral("1.0"));
    install(QStringLiteral("two"), QStringLiteral("2.0"));
    const QString image = QStringLiteral("/share/kivmenua/statuson.tiff");
    EXPECT_EQ(run(path(QStringLiteral("one/bin/probe"))).mid(0, 3),
              QStringList({QStringLiteral("1"), QStringLiteral("1.0"), path(QStringLiteral("one")) + image}));
    EXPECT_EQ(run(path(QStringLiteral("two/bin/probe"))).mid(0, 3),
              QStringList({QStringLiteral("1"), QStringLiteral("2.0"), path(QStringLiteral("two")) + image}));
}

TEST_F(MainBundle, HasItsHelpersInAFolderThatNobodysPathNames)
{
    install(QStringLiteral("one"), QStringLiteral("1.0"));
    const QString probe = path(QStringLiteral("one/bin/probe"));
    EXPECT_EQ(run(probe).value(3), QString());
    const QString another = QStringLiteral("one/libexec/kivmenua/another");
    write(another, "#!/bin/sh");
    EXPECT_EQ(run(probe).value(3), path(another));
}

TEST_F(MainBundle, IsThatOfTheRealProgramBehindALink)
{
    install(QStringLiteral("real"), QStringLiteral("1.0"));
    const QString link = path(QStringLiteral("link"));
    ASSERT_TRUE(QFile::link(path(QStringLiteral("real/bin/probe")), link));
    EXPECT_EQ(run(link).value(1), QStringLiteral("1.0"));
}

TEST_F(MainBundle, HasNothingWhenTheFolderIsMissing)
{
    install(QStringLiteral("bare"), QStringLiteral("1.0"));
    ASSERT_TRUE(QDir(path(QStringLiteral("bare/share"))).removeRecursively());
    EXPECT_EQ(run(path(QStringLiteral("bare/bin/probe"))).mid(0, 3),
              QStringList({QStringLiteral("0"), QString(), QString()}));
}

} // namespace
