#include "platform/Bundle.h"

#include "platform/data/PropertyList.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/LogLines.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace
{

class BundleFolder : public testing::Test
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

    void writeInfo(const QString &name, const QVariant &value) const { write(name, PropertyList::toXml(value)); }

private:
    QTemporaryDir m_folder;
};

const QString info = QStringLiteral("Info.plist");

TEST_F(BundleFolder, GivesTheStringsOfItsInformationDictionary)
{
    writeInfo(info, QVariantMap{{QStringLiteral("KIVBuildVersion"), QStringLiteral("3.2.1")},
                                {QStringLiteral("KIVPrivateLabel"), QStringLiteral("")},
                                {QStringLiteral("KIVBuildDate"), 20110520},
                                {QStringLiteral("Real"), 3.5},
                                {QStringLiteral("Boolean"), true}});
    const Bundle bundle(path(QString()));
    ASSERT_TRUE(bundle.infoDictionary().has_value());
    EXPECT_EQ(bundle.infoDictionary()->size(), 5);
    EXPECT_EQ(bundle.infoString(QStringLiteral("KIVBuildVersion")), QStringLiteral("3.2.1"));
    EXPECT_TRUE(bundle.infoString(QStringLiteral("Missing")).isNull());
    EXPECT_EQ(bundle.infoString(QStringLiteral("KIVBuildDate")), QStringLiteral("20110520"));
    EXPECT_EQ(bundle.infoString(QStringLiteral("Real")), QStringLiteral("3.5"));
    EXPECT_TRUE(bundle.infoString(QStringLiteral("Boolean")).isNull());
    const QString label = bundle.infoString(QStringLiteral("KIVPrivateLabel"));
    EXPECT_TRUE(label.isEmpty());
    EXPECT_FALSE(label.isNull());
}

TEST_F(BundleFolder, HasNoDictionaryWhenInfoPlistIsMissing)
{
    const Bundle bundle(path(QString()));
    EXPECT_FALSE(bundle.infoDictionary().has_value());
    EXPECT_TRUE(bundle.infoString(QStringLiteral("KIVBuildVersion")).isNull());
}

TEST_F(BundleFolder, HasNoDictionaryWhenInfoPlistIsMalformed)
{
    write(info, "<plist><dict><key>KIVBuildVersion</key></dict></plist>");
    EXPECT_FALSE(Bundle(path(QString())).infoDictionary().has_value());
}

TEST_F(BundleFolder, HasNoDictionaryWhenInfoPlistIsAnArray)
{
    writeInfo(info, QVariantList{QStringLiteral("KIVBuildVersion")});
    EXPECT_FALSE(Bundle(path(QString())).infoDictionary().has_value());
}

TEST_F(BundleFolder, SaysThatInfoPlistIsMalformedButNotThatItIsMissing)
{
    LogLines lines;
    EXPECT_FALSE(Bundle(path(QString())).infoDictionary().has_value());
    EXPECT_TRUE(lines.takeWarnings().empty());
    write(info, "<plist><dict><key>KIVBuildVersion</key></dict></plist>");
    EXPECT_FALSE(Bundle(path(QString())).infoDictionary().has_value());
    EXPECT_EQ(lines.takeWarnings().size(), 1U);
}

TEST_F(BundleFolder, TakesFromBuildPlistOnlyWhatInfoPlistDoesNotState)
{
    const QString version = QStringLiteral("KIVBuildVersion");
    const QString home = QStringLiteral("KIVProductHome");
    writeInfo(QStringLiteral("Build.plist"),
              QVariantMap{{version, QStringLiteral("2.0")}, {home, QStringLiteral("b")}});
    EXPECT_FALSE(Bundle(path(QString())).infoDictionary().has_value()) << "it stands for nothing alone";
    writeInfo(info, QVariantMap{{home, QStringLiteral("a")}});
    EXPECT_EQ(Bundle(path(QString())).infoString(version), QStringLiteral("2.0"));
    EXPECT_EQ(Bundle(path(QString())).infoString(home), QStringLiteral("a"));
}

TEST_F(BundleFolder, TellsAnEmptyDictionaryFromNone)
{
    writeInfo(info, QVariantMap());
    const Bundle bundle(path(QString()));
    ASSERT_TRUE(bundle.infoDictionary().has_value());
    EXPECT_TRUE(bundle.infoDictionary()->isEmpty());
}

TEST_F(BundleFolder, TakesInfoPlistFromOutsideTheResources)
{
    writeInfo(QStringLiteral("Contents/Info.plist"),
              QVariantMap{{QStringLiteral("KIVBuildVersion"), QStringLiteral("4.0")}});
    write(QStringLiteral("Contents/Resources/statuson.tiff"), "II*");
    write(QStringLiteral("Contents/MacOS/another"), "#!/bin/sh");
    const Bundle bundle(path(QStringLiteral("Contents/Resources")), path(QStringLiteral("Contents/Info.plist")),
                        path(QStringLiteral("Contents/MacOS")));
    EXPECT_EQ(bundle.pathForAuxiliaryExecutable(QStringLiteral("another")),
              path(QStringLiteral("Contents/MacOS/another")));
    EXPECT_EQ(bundle.infoString(QStringLiteral("KIVBuildVersion")), QStringLiteral("4.0"));
    EXPECT_FALSE(bundle.pathForResource(QStringLiteral("statuson"), QStringLiteral("tiff")).isNull());
}

TEST_F(BundleFolder, FindsOnlyResourcesThatAreFiles)
{
    write(QStringLiteral("statuson.tiff"), "II*");
    write(QStringLiteral("README"), "text");
    ASSERT_TRUE(QDir().mkpath(path(QStringLiteral("folder.tiff"))));
    ASSERT_TRUE(QFile::link(path(QStringLiteral("nowhere")), path(QStringLiteral("dangling.tiff"))));
    const Bundle bundle(path(QString()));
    const QString tiff = QStringLiteral("tiff");

    QFile found(bundle.pathForResource(QStringLiteral("statuson"), tiff));
    ASSERT_TRUE(found.open(QIODevice::ReadOnly));
    EXPECT_EQ(found.readAll(), "II*");
    EXPECT_TRUE(bundle.pathForResource(QStringLiteral("README"), QString()).endsWith(u"/README"));
    EXPECT_TRUE(bundle.pathForResource(QStringLiteral("statusoff"), tiff).isNull());
    EXPECT_TRUE(bundle.pathForResource(QStringLiteral("statuson"), QStringLiteral("icns")).isNull());
    EXPECT_TRUE(bundle.pathForResource(QStringLiteral("folder"), tiff).isNull());
    EXPECT_TRUE(bundle.pathForResource(QStringLiteral("dangling"), tiff).isNull());
}

class MainBundle : public BundleFolder
{
protected:
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
        writeInfo(where + QStringLiteral("/share/kivmenua/Info.plist"),
                  QVariantMap{{QStringLiteral("KIVBuildVersion"), version}});
        write(where + QStringLiteral("/share/kivmenua/statuson.tiff"), "II*");
    }
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
