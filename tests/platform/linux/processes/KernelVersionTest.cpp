#include "platform/linux/processes/KernelVersion.h"

#include <gtest/gtest.h>

namespace
{

struct Release {
    const char16_t *release;
    const char16_t *version; ///< Null is nil.
};

constexpr Release releases[] = {
    {u"6.1.0-13-amd64", u"6.1.0"},
    {u"6.12.9", u"6.12.9"},
    {u"5.15.167.4-microsoft-standard-WSL2", u"5.15.167.4"},
    {u"6.8-rc3", u"6.8"},
    {u"4.18.0+", u"4.18.0"},
    {u"6", u"6"},
    {u"6.", u"6"},
    {u"6..1", u"6"},
    {u"6.1.-x", u"6.1"},
    {u"6.x1", u"6"},
    {u"\u0666.1", nullptr},
    {u".6", nullptr},
    {u"v6.1", nullptr},
    {u"", nullptr},
};

} // namespace

TEST(KernelVersion, IsTheReleasesLeadingDottedNumber)
{
    for (const Release &r : releases) {
        const QString version = kernelVersion(r.release);
        EXPECT_EQ(version, r.version ? QString::fromUtf16(r.version) : QString())
            << QString::fromUtf16(r.release).toStdString();
        EXPECT_EQ(version.isNull(), r.version == nullptr) << QString::fromUtf16(r.release).toStdString();
    }
}
