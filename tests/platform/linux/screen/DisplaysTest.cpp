#include "tests/support/Xrandr.h"

#include <Carbon/Carbon.h>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <map>

namespace
{

std::int32_t number(CFDictionaryRef mode, CFStringRef key)
{
    std::int32_t value = -1;
    const auto stored = static_cast<CFNumberRef>(CFDictionaryGetValue(mode, key));
    return stored && CFNumberGetValue(stored, kCFNumberSInt32Type, &value) ? value : -1;
}

/// Whether a desktop can be shown in the modes, by their widths.
std::map<std::int32_t, std::int32_t> usableForDesktop()
{
    std::map<std::int32_t, std::int32_t> usable;
    const CFArrayRef modes = CGDisplayAvailableModes(CGMainDisplayID());
    for (CFIndex i = 0; modes && i < CFArrayGetCount(modes); ++i) {
        const auto mode = static_cast<CFDictionaryRef>(CFArrayGetValueAtIndex(modes, i));
        usable[number(mode, CFSTR("Width"))] = number(mode, CFSTR("UsableForDesktopGUI"));
    }
    return usable;
}

} // namespace

TEST(Displays, CountModesThatAreInterlacedOrScannedTwiceAsUnusable)
{
    const QString output = QRegularExpression(QStringLiteral("^(\\S+) connected"), QRegularExpression::MultilineOption)
                               .match(QString::fromUtf8(xrandr({}).value_or(QByteArray())))
                               .captured(1);
    ASSERT_FALSE(output.isEmpty());
    const QList<QPair<QString, QString>> flags{
        {QStringLiteral("1001"), QStringLiteral("-HSync")},
        {QStringLiteral("1002"), QStringLiteral("Interlace")},
        {QStringLiteral("1003"), QStringLiteral("DoubleScan")},
    };
    for (const auto &[width, flag] : flags) {
        const QString name = QStringLiteral("test-") + width;
        QStringList line{QStringLiteral("--newmode"), name, QStringLiteral("40"), width};
        line += QStringLiteral("1050 1100 1300 700 703 709 740").split(u' ');
        ASSERT_TRUE(xrandr(line << flag));
        ASSERT_TRUE(xrandr({QStringLiteral("--addmode"), output, name}));
    }
    const auto usable = usableForDesktop();
    EXPECT_EQ(usable.at(1280), 1);
    EXPECT_EQ(usable.at(1001), 1);
    EXPECT_EQ(usable.at(1002), 0);
    EXPECT_EQ(usable.at(1003), 0);
    for (const auto &[width, flag] : flags) {
        EXPECT_TRUE(xrandr({QStringLiteral("--delmode"), output, QStringLiteral("test-") + width}));
        EXPECT_TRUE(xrandr({QStringLiteral("--rmmode"), QStringLiteral("test-") + width}));
    }
}
