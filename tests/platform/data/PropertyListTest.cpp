#include "platform/data/PropertyList.h"

#include "platform/data/UtcTime.h"
#include "tests/platform/data/PropertyListSamples.h"
#include "tests/support/FullDisk.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <random>
#include <sys/stat.h>

using PropertyList::Writing;

namespace
{

constexpr qsizetype maxBytes = qsizetype{16} * 1024 * 1024;

const QVariantMap sample{
    {QStringLiteral("text"), QStringLiteral("Gr\u00FC\u00DFe \U0001F600 <&>\r\n")},
    {QStringLiteral("number"), qlonglong(-5'000'000'000)},
    {QStringLiteral("large"), std::numeric_limits<qulonglong>::max()},
    {QStringLiteral("real"), 0.1},
    {QStringLiteral("date"), QDateTime(QDate(9999, 12, 31), QTime(23, 59, 59), inUtc)},
    {QStringLiteral("data"), QByteArray("\x00\xFF\x10\r\n", 5)},
    {QStringLiteral("list"),
     QVariantList{true, false, QVariantMap{{QStringLiteral(""), QStringLiteral("")}}, QVariantList()}},
};

/// The same values in the binary format, as other programs write it.
QByteArray binarySample()
{
    const auto hex = [](const char *digits) { return QByteArray::fromHex(digits); };
    return binaryList({hex("D4010203040506070C"), hex("5474657874"), hex("6400E400F6D83DDE00"), hex("546C697374"),
                       hex("5464617465"), hex("5F1010") + QByteArray(16, 'x'), hex("13FFFFFFFED5FA0E00"),
                       hex("A408090A0B"), hex("140000000000000000FFFFFFFFFFFFFFFF"), hex("233FB999999999999A"),
                       hex("3342440F1C00000000"), hex("4300FF10"), hex("D1010D"), hex("A10E"), hex("09")});
}

/// What reading these bytes gives is the same each time, and when it is something it can be written and read again.
/// Returns whether it is something.
bool readsInADefinedWay(const QByteArray &bytes)
{
    const QVariant value = PropertyList::read(bytes);
    const QByteArray xml = PropertyList::toXml(value);
    EXPECT_EQ(PropertyList::toXml(PropertyList::read(bytes)), xml);
    EXPECT_EQ(value.isValid(), !xml.isEmpty()) << bytes.toHex().toStdString();
    // Characters that XML forbids are gone after the first writing. Nothing may be lost in the second.
    const QByteArray again = PropertyList::toXml(PropertyList::read(xml));
    EXPECT_EQ(PropertyList::toXml(PropertyList::read(again)), again);
    EXPECT_EQ(value.isValid(), !again.isEmpty()) << bytes.toHex().toStdString();
    return value.isValid();
}

TEST(PropertyList, KeepsEveryValueThroughXml)
{
    PropertyListSamples source(11, PropertyListSamples::Text::WithReturns);
    for (int i = 0; i < 500; ++i) {
        const QVariant value = source.next();
        ASSERT_EQ(tagged(PropertyList::read(PropertyList::toXml(value))), tagged(value))
            << PropertyList::toXml(value).toStdString();
    }
}

TEST(PropertyList, TellsTheFormatsApart)
{
    EXPECT_EQ(PropertyList::read(PropertyList::toXml(sample)), QVariant(sample));
    const QVariantMap binary = PropertyList::read(binarySample()).toMap();
    EXPECT_EQ(binary.size(), 4);
    EXPECT_EQ(binary.value(QStringLiteral("list")).toList().size(), 4);
    EXPECT_FALSE(PropertyList::read(QByteArray()).isValid());
    EXPECT_FALSE(PropertyList::read("bplist").isValid());
    EXPECT_FALSE(PropertyList::read("{ old = style; }").isValid());
}

TEST(PropertyList, IsMalformedWhenAnythingIsMissingAtTheEnd)
{
    const QByteArray xml = PropertyList::toXml(sample).trimmed();
    const QByteArray binary = binarySample();
    ASSERT_TRUE(PropertyList::read(xml).isValid());
    ASSERT_TRUE(PropertyList::read(binary).isValid());
    for (const QByteArray &whole : {xml, binary}) {
        for (qsizetype size = 0; size < whole.size(); ++size) {
            ASSERT_FALSE(readsInADefinedWay(whole.first(size))) << size << " of " << whole.size();
        }
    }
}

TEST(PropertyList, SurvivesRandomDamage)
{
    std::mt19937 random(20);
    const auto below = [&random](qsizetype bound) {
        return static_cast<qsizetype>(random() % static_cast<size_t>(bound));
    };
    int accepted = 0;
    int refused = 0;
    for (const QByteArray &whole : {PropertyList::toXml(sample), binarySample()}) {
        for (int round = 0; round < 5000; ++round) {
            QByteArray damaged = whole;
            for (qsizetype flips = 1 + below(4); flips > 0; --flips) {
                char &byte = damaged.data()[below(damaged.size())];
                byte = static_cast<char>(round % 2 ? byte ^ (1 << below(8)) : below(256));
            }
            if (round % 5 == 0) {
                damaged.remove(below(damaged.size()), below(8));
            } else if (round % 5 == 1) {
                damaged.insert(below(damaged.size()), damaged.mid(below(damaged.size()), below(40)));
            }
            ++(readsInADefinedWay(damaged) ? accepted : refused);
        }
    }
    EXPECT_GT(accepted, 500);
    EXPECT_GT(refused, 500);
}

TEST(PropertyList, IsAtMostSixteenMebibytesLarge)
{
    const QByteArray xml = PropertyList::toXml(sample);
    const QByteArray largest = xml + QByteArray(maxBytes - xml.size(), '\n');
    EXPECT_EQ(PropertyList::read(largest), QVariant(sample));
    EXPECT_FALSE(PropertyList::read(largest + '\n').isValid());
}

class PropertyListFile : public testing::Test
{
protected:
    [[nodiscard]] QString path(const QString &name = QStringLiteral("list.plist")) const
    {
        return m_folder.filePath(name);
    }

    [[nodiscard]] QStringList files() const
    {
        return QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

    [[nodiscard]] QByteArray content() const
    {
        QFile file(path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    void write(const QByteArray &bytes) const
    {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }

private:
    QTemporaryDir m_folder;
};

class PropertyListFileEitherWay : public PropertyListFile, public testing::WithParamInterface<Writing>
{
};

struct stat status(const QString &path)
{
    struct stat result {
    };
    EXPECT_EQ(::lstat(QFile::encodeName(path).constData(), &result), 0);
    return result;
}

TEST_P(PropertyListFileEitherWay, ReadsBackWhatWasWritten)
{
    EXPECT_TRUE(PropertyList::writeFile(path(), sample, GetParam()));
    EXPECT_EQ(PropertyList::readFile(path()), QVariant(sample));
    EXPECT_EQ(files().size(), 1);
}

TEST_P(PropertyListFileEitherWay, ReplacesALongerList)
{
    write(QByteArray(100'000, 'x'));
    EXPECT_TRUE(PropertyList::writeFile(path(), sample, GetParam()));
    EXPECT_EQ(content(), PropertyList::toXml(sample));
    EXPECT_EQ(files().size(), 1);
}

TEST_P(PropertyListFileEitherWay, IsLeftAloneByAValueThatIsNoList)
{
    write("old");
    EXPECT_FALSE(PropertyList::writeFile(path(), QVariant(), GetParam()));
    EXPECT_FALSE(PropertyList::writeFile(path(), QVariantList(1'000'000, true), GetParam()));
    EXPECT_EQ(content(), "old");
}

TEST_P(PropertyListFileEitherWay, IsNotWrittenToAFolderThatIsMissing)
{
    EXPECT_FALSE(PropertyList::writeFile(path(QStringLiteral("none/list.plist")), sample, GetParam()));
    EXPECT_TRUE(files().isEmpty());
}

TEST_P(PropertyListFileEitherWay, IsNotWrittenInPlaceOfAFolderOrPipe)
{
    ASSERT_TRUE(QDir().mkpath(path(QStringLiteral("folder"))));
    ASSERT_EQ(::mkfifo(QFile::encodeName(path(QStringLiteral("pipe"))).constData(), 0600), 0);
    EXPECT_FALSE(PropertyList::writeFile(path(QStringLiteral("folder")), sample, GetParam()));
    EXPECT_FALSE(PropertyList::writeFile(path(QStringLiteral("pipe")), sample, GetParam()));
    EXPECT_TRUE(S_ISDIR(status(path(QStringLiteral("folder"))).st_mode));
    EXPECT_TRUE(S_ISFIFO(status(path(QStringLiteral("pipe"))).st_mode));
    EXPECT_EQ(files().size(), 2);
}

TEST_P(PropertyListFileEitherWay, IsNotWrittenThroughALink)
{
    write("old");
    const QString link = path(QStringLiteral("link"));
    ASSERT_TRUE(QFile::link(path(), link));
    const bool replaces = GetParam() == Writing::Atomic;
    EXPECT_EQ(PropertyList::writeFile(link, sample, GetParam()), replaces);
    EXPECT_EQ(S_ISLNK(status(link).st_mode), !replaces);
    EXPECT_EQ(content(), "old");
}

TEST_P(PropertyListFileEitherWay, IsNotWrittenIntoAFolderOfSomebodyElse)
{
    const QString folder = path(QStringLiteral("theirs"));
    ASSERT_TRUE(QDir().mkpath(folder));
    if (::chown(QFile::encodeName(folder).constData(), 12345, 12345) != 0) {
        GTEST_SKIP() << "only root can give a folder away";
    }
    EXPECT_FALSE(PropertyList::writeFile(folder + QStringLiteral("/list.plist"), sample, GetParam()));
    EXPECT_TRUE(QDir(folder).isEmpty());
}

TEST_P(PropertyListFileEitherWay, KeepsItsMode)
{
    write("old");
    ASSERT_EQ(::chmod(QFile::encodeName(path()).constData(), 0640), 0);
    EXPECT_TRUE(PropertyList::writeFile(path(), sample, GetParam()));
    EXPECT_EQ(status(path()).st_mode & 07777U, 0640U);
}

TEST_P(PropertyListFileEitherWay, ReportsAFullDisk)
{
    const QVariantMap large{{QStringLiteral("data"), QByteArray(200'000, 'x')}};
    for (const rlim_t space : {0, 1, 4096, 100'000}) {
        const FullDisk disk(space);
        EXPECT_FALSE(PropertyList::writeFile(path(), large, GetParam())) << space;
    }
    EXPECT_TRUE(PropertyList::writeFile(path(), large, GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Both, PropertyListFileEitherWay, testing::Values(Writing::Atomic, Writing::InPlace),
                         [](const auto &writing) { return writing.param == Writing::Atomic ? "Atomic" : "InPlace"; });

TEST_F(PropertyListFile, WrittenAtomicallyStaysWholeWhenTheDiskIsFull)
{
    write("old");
    {
        const FullDisk disk(100);
        EXPECT_FALSE(PropertyList::writeFile(path(), sample, Writing::Atomic));
    }
    EXPECT_EQ(content(), "old");
    EXPECT_EQ(files(), QStringList{QStringLiteral("list.plist")}) << "a temporary file is left behind";
}

TEST_F(PropertyListFile, WrittenAtomicallyIsNeverSeenHalfWritten)
{
    write("old");
    QFile reader(path());
    ASSERT_TRUE(reader.open(QIODevice::ReadOnly));
    EXPECT_TRUE(PropertyList::writeFile(path(), sample, Writing::Atomic));
    EXPECT_EQ(reader.readAll(), "old"); // The reader still has the old file: the new one took its name.
}

TEST_F(PropertyListFile, WrittenInPlaceKeepsItsInodeAndLinks)
{
    write("old");
    const QString other = path(QStringLiteral("other"));
    ASSERT_EQ(::link(QFile::encodeName(path()).constData(), QFile::encodeName(other).constData()), 0);
    const struct stat before = status(path());
    EXPECT_TRUE(PropertyList::writeFile(path(), sample, Writing::InPlace));
    const struct stat after = status(path());
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_nlink, 2U);
    EXPECT_EQ(PropertyList::readFile(other), QVariant(sample));
}

TEST_F(PropertyListFile, GivesNothingWhenThereIsNoSuchFile)
{
    ASSERT_TRUE(QFile::link(path(QStringLiteral("nowhere")), path(QStringLiteral("dangling"))));
    EXPECT_FALSE(PropertyList::readFile(path()).isValid());
    EXPECT_FALSE(PropertyList::readFile(path(QStringLiteral("dangling"))).isValid());
    EXPECT_FALSE(PropertyList::readFile(QString()).isValid());
}

TEST_F(PropertyListFile, IsReadThroughALinkUnlessThatIsRefused)
{
    write(PropertyList::toXml(sample));
    const QString link = path(QStringLiteral("link"));
    ASSERT_TRUE(QFile::link(path(), link));
    EXPECT_EQ(PropertyList::readFile(link), QVariant(sample));
    EXPECT_FALSE(PropertyList::readFile(link, RegularFile::Links::Refuse).isValid());
    EXPECT_EQ(PropertyList::readFile(path(), RegularFile::Links::Refuse), QVariant(sample));
}

TEST_F(PropertyListFile, GivesNothingForFoldersPipesAndDevices)
{
    ASSERT_EQ(::mkfifo(QFile::encodeName(path()).constData(), 0600), 0);
    EXPECT_FALSE(PropertyList::readFile(path()).isValid());
    EXPECT_FALSE(PropertyList::readFile(path(QString())).isValid());
    EXPECT_FALSE(PropertyList::readFile(QStringLiteral("/dev/zero")).isValid());
}

TEST_F(PropertyListFile, GivesNothingForEmptyAndOversizedFiles)
{
    write(QByteArray());
    EXPECT_FALSE(PropertyList::readFile(path()).isValid());
    const QByteArray xml = PropertyList::toXml(sample);
    write(xml + QByteArray(maxBytes - xml.size(), ' '));
    EXPECT_EQ(PropertyList::readFile(path()), QVariant(sample));
    write(xml + QByteArray(maxBytes - xml.size() + 1, ' '));
    EXPECT_FALSE(PropertyList::readFile(path()).isValid());
    ASSERT_TRUE(QFile::resize(path(), qint64(1) << 40)); // A terabyte that takes no space.
    EXPECT_FALSE(PropertyList::readFile(path()).isValid());
}

} // namespace
