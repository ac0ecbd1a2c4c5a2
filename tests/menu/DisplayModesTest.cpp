#include "menu/DisplayModes.h"

#include "tests/menu/ModeList.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

namespace
{

QJsonObject readData(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
    return QJsonDocument::fromJson(file.readAll()).object();
}

QStringList titles(const std::vector<KIVDspRes> &sizes)
{
    QStringList result;
    for (const KIVDspRes &size : sizes) {
        result += size.title();
    }
    return result;
}

QJsonObject mode(int width, int height)
{
    return {{QStringLiteral("UsableForDesktopGUI"), 1},
            {QStringLiteral("Width"), width},
            {QStringLiteral("Height"), height}};
}

} // namespace

TEST(DisplayModes, BecomeTheSizesThatTheDataFilesExpect)
{
    const QDir folder(QStringLiteral(KIV_MODE_LISTS));
    QStringList files = folder.entryList({QStringLiteral("*.json")});
    ASSERT_GE(files.size(), 9);
#ifdef Q_OS_MACOS
    files.removeAll(QStringLiteral("missing-elements.json")); // No array that retains its elements has such there.
#endif
    for (const QString &file : files) {
        const QJsonObject data = readData(folder.filePath(file));
        const CFArrayRef modes = newModeList(data.value(QStringLiteral("modes")).toArray());
        QStringList expected;
        for (const QJsonValue title : data.value(QStringLiteral("expected")).toArray()) {
            expected += title.toString();
        }
        EXPECT_EQ(titles(displaySizes(modes)), expected)
            << qPrintable(file) << ": " << qPrintable(data.value(QStringLiteral("about")).toString());
        CFRelease(modes);
    }
}

TEST(DisplayModes, OfWhichThereAreHundredsKeepTheirOrder)
{
    // 300 sizes of 30 widths, mixed well, and each of them twice.
    QJsonArray modes;
    for (int i = 0; i < 600; ++i) {
        const int size = i * 97 % 300;
        modes += mode(640 + 32 * (size % 30), 480 + 16 * (size / 30));
    }
    QStringList expected;
    for (int width = 640 + 32 * 29; width >= 640; width -= 32) {
        for (const QJsonValue one : modes) {
            const QString title =
                QStringLiteral("%1 x %2").arg(width).arg(one.toObject().value(QStringLiteral("Height")).toInt());
            if (one.toObject().value(QStringLiteral("Width")) == width && !expected.contains(title)) {
                expected += title;
            }
        }
    }
    ASSERT_EQ(expected.size(), 300);
    const CFArrayRef list = newModeList(modes);
    EXPECT_EQ(titles(displaySizes(list)), expected);
    CFRelease(list);
}

TEST(DisplayModes, KeepWidthAndHeightBesideTheTitle)
{
    const CFArrayRef modes = newModeList({mode(1366, 768)});
    const std::vector<KIVDspRes> sizes = displaySizes(modes);
    CFRelease(modes);
    ASSERT_EQ(sizes.size(), 1U);
    EXPECT_EQ(sizes[0].width(), 1366);
    EXPECT_EQ(sizes[0].height(), 768);
}

TEST(GetInt, ReadsZeroForAMissingKey)
{
    const CFDictionaryRef empty = CFDictionaryCreate(kCFAllocatorDefault, nullptr, nullptr, 0,
                                                     &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    EXPECT_EQ(get_int(empty, CFSTR("Width")), 0);
    CFRelease(empty);
}
