#include "notify/feed/FeedTokens.h"

#include "notify/feed/FeedDocument.h"
#include "notify/record/FeedVocabulary.h"
#include "notify/record/MessageText.h"
#include "platform/data/CrowdedTag.h"
#include "platform/data/TextBeginning.h"

#include <QXmlStreamReader>

#include <utility>

namespace
{

constexpr int maxLevels = 100;
constexpr int maxMessages = 1000;
/// Five times as many as so many messages have, and so few that they all find room.
constexpr int maxElementsOfAFeed = 100'000;
/// Of an element: of a content in base64, broken into lines, more than is kept of the longest text.
constexpr qsizetype maxCharacters = 2 * maxHtmlBytes;

class TokenReader final
{
public:
    explicit TokenReader(const FeedDocument &document)
        : m_isWhole(document.isWhole)
    {
        m_reader.setNamespaceProcessing(false);
        m_reader.addData(document.text);
    }

    FeedTokens readAll()
    {
        while (hasReadNext()) {
        }
        return std::move(m_result);
    }

private:
    [[nodiscard]] bool hasReadNext()
    {
        switch (m_reader.readNext()) {
        case QXmlStreamReader::StartElement:
            return isStartTaken();
        case QXmlStreamReader::Characters:
            foundCharacters(m_reader.text());
            return true;
        case QXmlStreamReader::EndElement:
            m_result.tokens.push_back({FeedToken::Kind::EndElement, std::move(m_open.back())});
            m_open.pop_back();
            return true;
        case QXmlStreamReader::EndDocument:
            return m_isWhole ? false : refuse(QStringLiteral("malformed: it cannot be decoded to its end"));
        case QXmlStreamReader::DTD: // Qt takes one behind the root, too.
            return m_elements == 0 || refuse(QStringLiteral("malformed: its type stands behind its beginning"));
        case QXmlStreamReader::EntityReference:
        case QXmlStreamReader::Invalid:
            return refuse(QStringLiteral("malformed: line %1 column %2 \"%3\"")
                              .arg(m_reader.lineNumber())
                              .arg(m_reader.columnNumber())
                              .arg(m_reader.errorString()));
        default:
            return true;
        }
    }

    [[nodiscard]] bool isStartTaken()
    {
        m_messages += m_reader.qualifiedName() == kSupportMessageKey ? 1 : 0;
        if (m_messages > maxMessages) {
            m_result.remark =
                QStringLiteral("the document has more than %1 messages: the others are left out").arg(maxMessages);
            return false;
        }
        if (++m_elements > maxElementsOfAFeed) {
            m_result.remark = QStringLiteral("the document has more than %1 elements: the others are left out")
                                  .arg(maxElementsOfAFeed);
            return false;
        }
        if (std::ssize(m_open) == maxLevels) {
            return refuse(QStringLiteral("refused: too many levels of elements"));
        }
        m_open.push_back(m_reader.qualifiedName().toString());
        m_result.tokens.push_back({FeedToken::Kind::StartElement, m_open.back()});
        return true;
    }

    void foundCharacters(QStringView characters)
    {
        std::vector<FeedToken> &tokens = m_result.tokens;
        if (tokens.empty() || tokens.back().kind == FeedToken::Kind::EndElement) {
            return;
        }
        if (tokens.back().kind == FeedToken::Kind::StartElement) {
            tokens.push_back({FeedToken::Kind::Characters, {}});
        }
        QString &text = tokens.back().text;
        text += beginningOf(characters, maxCharacters - text.size());
    }

    /// False: no more is read.
    [[nodiscard]] bool refuse(const QString &why)
    {
        m_result.isMalformed = true;
        m_result.remark = QStringLiteral("the document is ") + why;
        return false;
    }

    QXmlStreamReader m_reader;
    const bool m_isWhole;
    int m_messages = 0;
    int m_elements = 0;
    std::vector<QString> m_open; ///< The names of the elements around.
    FeedTokens m_result;
};

} // namespace

FeedTokens feedTokens(const QByteArray &document)
{
    return TokenReader(feedDocument(document, maxXmlAttributes)).readAll();
}
