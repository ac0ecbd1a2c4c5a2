#include "platform/Bundle.h"

#include "platform/data/PropertyList.h"
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

TEST_F(BundleFolder, LooksNowhereForTheFilesOfAFolderThatNobodyKnows)
{
    const Bundle bundle({}, path(info), {});
    EXPECT_TRUE(bundle.pathForResource(QStringLiteral("etc/passwd"), QString()).isNull());
    EXPECT_TRUE(bundle.pathForAuxiliaryExecutable(QStringLiteral("bin/sh")).isNull());
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

} // namespace
