// Both ways against an implementation that shares nothing with ours.

#include "platform/data/PropertyList.h"
#include "tests/platform/data/PropertyListSamples.h"
#include "tests/support/ChildProcess.h"

#include <QJsonDocument>

#include <gtest/gtest.h>

namespace
{

using Text = PropertyListSamples::Text;

constexpr int sampleCount = 300;

QList<QVariant> samples(unsigned seed, Text text)
{
    PropertyListSamples source(seed, text);
    QList<QVariant> list;
    for (int i = 0; i < sampleCount; ++i) {
        list.append(source.next());
    }
    return list;
}

QByteArray toLine(const QVariant &value)
{
    return QJsonDocument(tagged(value)).toJson(QJsonDocument::Compact);
}

/// What the peer answers to these lines.
QList<QByteArray> askPeer(const QStringList &arguments, const QList<QByteArray> &lines)
{
    ChildProcess peer;
    EXPECT_TRUE(peer.start(QStringLiteral(KIV_PYTHON), QStringList{QStringLiteral(KIV_PLIST_PEER)} + arguments));
    peer.process().write(lines.join('\n'));
    peer.closeInput();
    EXPECT_TRUE(peer.process().waitForFinished());
    EXPECT_EQ(peer.exitCode(), 0);
    return peer.output().trimmed().split('\n');
}

void expectPeerReadsOurXml(const QList<QVariant> &values, const QList<QVariant> &expected)
{
    QList<QByteArray> lines;
    for (const QVariant &value : values) {
        lines.append(PropertyList::toXml(value).toHex());
    }
    const QList<QByteArray> answers = askPeer({QStringLiteral("read")}, lines);
    ASSERT_EQ(answers.size(), values.size());
    for (qsizetype i = 0; i < values.size(); ++i) {
        ASSERT_EQ(QJsonDocument::fromJson(answers[i]).array(), tagged(expected[i]))
            << PropertyList::toXml(values[i]).toStdString() << answers[i].toStdString();
    }
}

void expectWeReadThePeers(const QString &format, const QList<QVariant> &values)
{
    QList<QByteArray> lines;
    for (const QVariant &value : values) {
        lines.append(toLine(value));
    }
    const QList<QByteArray> answers = askPeer({QStringLiteral("write"), format}, lines);
    ASSERT_EQ(answers.size(), values.size());
    for (qsizetype i = 0; i < values.size(); ++i) {
        const QVariant read = PropertyList::read(QByteArray::fromHex(answers[i]));
        ASSERT_EQ(toLine(read).toStdString(), lines[i].toStdString()) << answers[i].toStdString();
    }
}

TEST(PropertyListPeer, ReadsTheXmlThatWeWrite)
{
    const QList<QVariant> values = samples(1, Text::WithReturns);
    expectPeerReadsOurXml(values, values);
}

TEST(PropertyListPeer, ReadsWhatIsLeftOfTextThatXmlForbids)
{
    QString all;
    QString allowed;
    for (int c = 0; c <= 0xFFFF; ++c) {
        all += QChar(c);
        const bool isAllowed =
            c == '\t' || c == '\n' || c == '\r' || (c >= 0x20 && c < 0xD800) || (c > 0xDFFF && c < 0xFFFE);
        if (isAllowed) {
            allowed += QChar(c);
        }
    }
    // Kept apart, since in the order of their numbers the last high and the first low surrogate would form a pair.
    all.insert(0xDC00, u'-');
    allowed.insert(allowed.indexOf(QChar(0xE000)), u'-');
    expectPeerReadsOurXml({QVariantMap{{all, all}}}, {QVariantMap{{allowed, allowed}}});
}

TEST(PropertyListPeer, WritesXmlThatWeRead)
{
    expectWeReadThePeers(QStringLiteral("xml"), samples(2, Text::Plain));
}

TEST(PropertyListPeer, WritesBinaryThatWeRead)
{
    expectWeReadThePeers(QStringLiteral("binary"), samples(3, Text::WithControls));
}

TEST(PropertyListPeer, AgreesOnNotANumber)
{
    const QVariant nan(std::numeric_limits<double>::quiet_NaN());
    expectPeerReadsOurXml({nan}, {nan});
    expectWeReadThePeers(QStringLiteral("xml"), {nan});
    expectWeReadThePeers(QStringLiteral("binary"), {nan});
}

TEST(PropertyListPeer, AgreesOnManyObjectsAndLongOnes)
{
    QVariantList numbers;
    for (int i = 0; i < 70'000; ++i) {
        numbers.append(qlonglong(i));
    }
    const QVariantMap value{{QStringLiteral("numbers"), numbers},
                            {QStringLiteral("ascii"), QString(70'000, u'a')},
                            {QStringLiteral("wide"), QString(70'000, QChar(0x20AC))},
                            {QStringLiteral("data"), QByteArray(70'000, '\xFF')}};
    expectPeerReadsOurXml({value}, {value});
    expectWeReadThePeers(QStringLiteral("binary"), {value});
    expectWeReadThePeers(QStringLiteral("xml"), {value});
}

} // namespace
