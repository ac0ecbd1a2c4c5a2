#include "platform/MainBundlePath.h"

#include "tests/platform/macos/FakeCoreFoundation.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

namespace
{

class MacMainBundlePath : public testing::Test
{
protected:
    MacMainBundlePath() { bundle = {}; }
    ~MacMainBundlePath() override { EXPECT_EQ(FakeCoreFoundation::liveObjects(), before) << "a URL was not released"; }

    const int before = FakeCoreFoundation::liveObjects();
    FakeCoreFoundation::MainBundle &bundle = FakeCoreFoundation::mainBundle();
};

} // namespace

TEST_F(MacMainBundlePath, IsTheBundlesResourcesItsDictionaryAndTheFolderOfTheProgram)
{
    bundle.resources = "/Library/Kivune \303\234/kivmenua.app/Contents/Resources";
    bundle.contents = "/Library/Kivune \303\234/kivmenua.app/Contents";
    const MainBundlePath path = mainBundlePath();
    EXPECT_EQ(path.resources, QStringLiteral(u"/Library/Kivune \u00dc/kivmenua.app/Contents/Resources"));
    EXPECT_EQ(path.informationFile, QStringLiteral(u"/Library/Kivune \u00dc/kivmenua.app/Contents/Info.plist"));
    EXPECT_EQ(path.executables, QCoreApplication::applicationDirPath());
}

TEST_F(MacMainBundlePath, IsNothingWithoutABundle)
{
    bundle.exists = false;
    EXPECT_TRUE(mainBundlePath().resources.isNull());
    EXPECT_TRUE(mainBundlePath().informationFile.isNull());
}

TEST_F(MacMainBundlePath, HasNoResourcesWhereTheBundleHasNone)
{
    bundle.contents = "/tmp/kivmenua.app/Contents";
    EXPECT_TRUE(mainBundlePath().resources.isNull());
}

TEST_F(MacMainBundlePath, HasNoDictionaryWhereTheSystemDoesNotTellWhereThatIs)
{
    bundle.resources = "/tmp/kivmenua.app/Contents/Resources";
    EXPECT_TRUE(mainBundlePath().informationFile.isNull());
}
