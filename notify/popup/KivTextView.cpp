#include "notify/popup/KivTextView.h"

#include "notify/popup/accessible/AccessibleMessage.h"
#include "notify/record/MessageText.h"
#include "notify/text/CleanHtml.h"
#include "notify/text/LinkScan.h"
#include "notify/text/ReadableColours.h"
#include "platform/text/CombiningMarks.h"
#include "platform/text/ScriptRuns.h"
#include "platform/text/SystemFont.h"

#include <QAbstractTextDocumentLayout>
#include <QContextMenuEvent>
#include <QImage>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFragment>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace
{

/// What is shown of a plain text beside maxTextBytes: lines, and pieces of one script.
constexpr int maxLines = 8000;
constexpr int maxScriptRuns = 8000;
/// Lines end between words. To look for such a place in a longer word than that, for each line anew, takes long.
constexpr int maxWord = 1000;
constexpr int maxScriptRunsInWord = 100;
/// The others stay text: a word in a thousand pieces takes long to lay out as well.
constexpr qsizetype maxLinks = 200;

/// The text without what Qt's documents use as marks of their own or cannot hold, and with one kind of line break, so
/// that a character's place in the text is its place in the document.
QString cleaned(QString text)
{
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    QString result;
    result.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        const bool isPair = c.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        if (isPair) {
            result += c;
            result += text[++i];
        } else if (c.isSurrogate()) {
            result += QChar(QChar::ReplacementCharacter);
        } else if (c == u'\r' || c == QChar(QChar::ParagraphSeparator)) {
            result += u'\n';
        } else if (c != u'\0' && c != QChar(QChar::ObjectReplacementCharacter) && !c.isNonCharacter()) {
            result += c;
        }
    }
    return withoutPiledUpMarks(result);
}

struct ShownText {
    QString text;
    bool hasEndlessWord = false;
};

/// As much of the text as is shown, with an ellipsis in place of the rest.
ShownText shortened(const QString &text)
{
    ShownText shown;
    ScriptRuns runs;
    qsizetype bytes = 0;
    int lines = 0;
    int word = 0;
    int runsBeforeWord = 0;
    qsizetype at = 0;
    while (at < text.size()) {
        const bool isPair = text[at].isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate();
        const char32_t character = isPair ? QChar::surrogateToUcs4(text[at], text[at + 1]) : text[at].unicode();
        bytes += character < 0x80 ? 1 : (character < 0x800 ? 2 : (isPair ? 4 : 3));
        lines += character == U'\n' ? 1 : 0;
        runs.add(character);
        if (bytes > maxTextBytes || lines > maxLines || runs.count() > maxScriptRuns) {
            break;
        }
        const bool endsWord = QChar::isSpace(character);
        word = endsWord ? 0 : word + 1;
        runsBeforeWord = endsWord ? runs.count() : runsBeforeWord;
        shown.hasEndlessWord =
            shown.hasEndlessWord || word > maxWord || runs.count() - runsBeforeWord > maxScriptRunsInWord;
        at += isPair ? 2 : 1;
    }
    shown.text = at == text.size() ? text : text.first(at) + QChar(u'\u2026');
    return shown;
}

} // namespace

KivTextView::KivTextView(QWidget *parent)
    : QTextBrowser(parent)
{
    AccessibleMessage::makeFor(*this);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setOpenLinks(false);
    setTextInteractionFlags(Qt::LinksAccessibleByMouse);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false);
    document()->setDocumentMargin(0);
    document()->setUndoRedoEnabled(false);
    connect(this, &QTextEdit::selectionChanged, this, &KivTextView::setSelectedRange);
}

void KivTextView::setMessage(const QString &text, int width)
{
    setDocumentWidth(width);
    m_message = text;
    m_links.reset();
    m_isHtml = isHtml(text);
    if (m_isHtml) {
        setHtmlMessage(width);
    } else {
        setPlainMessage(text);
    }
    setDocumentWidth(width);
}

void KivTextView::setTextWidth(int width)
{
    if (!m_isHtml || document()->textWidth() == width) {
        setDocumentWidth(width);
    } else {
        setMessage(m_message, width); // Tables fit or do not fit by that width.
    }
}

void KivTextView::setDocumentWidth(int width)
{
    // Qt lays it out anew even at the width that it has.
    if (document()->textWidth() != width) {
        document()->setTextWidth(width);
    }
}

float KivTextView::textHeight() const
{
    return static_cast<float>(std::ceil(document()->size().height()));
}

const QList<KivTextView::Link> &KivTextView::links() const
{
    // A screen reader asks for each of them many times over.
    if (!m_links) {
        m_links = linksOfDocument().mid(0, maxLinks);
    }
    return *m_links;
}

QList<KivTextView::Link> KivTextView::linksOfDocument() const
{
    QList<Link> links;
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        bool goesOn = false; // A link has a fragment for each of its formats.
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextFragment fragment = it.fragment();
            const QUrl address(fragment.charFormat().anchorHref());
            if (address.isEmpty()) {
                goesOn = false;
            } else if (goesOn && links.last().address == address) {
                links.last().length += fragment.length();
            } else {
                links.append({fragment.position(), fragment.length(), address});
                goesOn = true;
            }
        }
    }
    return links;
}

QRect KivTextView::placeOf(int position) const
{
    QTextCursor cursor(document());
    cursor.setPosition(std::min(position, document()->characterCount() - 1));
    const QRect place = cursorRect(cursor);
    return {viewport()->mapToGlobal(place.topLeft()), place.size()};
}

QRegion KivTextView::regionOf(const Link &link) const
{
    QRegion region;
    const int end = link.start + link.length;
    for (int at = link.start; at < end;) {
        const QTextBlock block = document()->findBlock(at);
        const QTextLine line = block.layout()->lineForTextPosition(at - block.position());
        if (!line.isValid()) {
            break;
        }
        const int endOfLine = std::min(end, block.position() + line.textStart() + line.textLength());
        const qreal from = line.cursorToX(at - block.position());
        const qreal to = line.cursorToX(endOfLine - block.position());
        const QPointF origin = document()->documentLayout()->blockBoundingRect(block).topLeft();
        region += QRectF(std::min(from, to), line.y(), std::abs(to - from), line.height())
                      .translated(origin)
                      .translated(-horizontalScrollBar()->value(), -verticalScrollBar()->value())
                      .toAlignedRect();
        at = std::max(endOfLine, at + 1);
    }
    return region;
}

void KivTextView::showLink(const Link &link)
{
    const QRect line(viewport()->mapFromGlobal(placeOf(link.start).topLeft()), placeOf(link.start).size());
    const int above = std::min(line.top(), 0);
    const int below = std::max(line.bottom() + 1 - viewport()->height(), 0);
    verticalScrollBar()->setValue(verticalScrollBar()->value() + (above < 0 ? above : below));
}

QVariant KivTextView::loadResource(int, const QUrl &)
{
    // A null answer would make Qt open the name as a file. So would, where an image is wanted, anything that is none;
    // and Qt keeps the answers by their names alone, so that a style sheet may have asked for that name before. An
    // image, in turn, is no style sheet to it.
    QImage nothing(1, 1, QImage::Format_ARGB32_Premultiplied);
    nothing.fill(Qt::transparent);
    return nothing;
}

void KivTextView::changeEvent(QEvent *event)
{
    QTextBrowser::changeEvent(event); // Which gives the document the font of widgets.
    const bool isFont = event->type() == QEvent::ApplicationFontChange || event->type() == QEvent::FontChange;
    if (!m_message.isNull() && (isFont || event->type() == QEvent::PaletteChange)) {
        setMessage(m_message, static_cast<int>(document()->textWidth()));
    }
    if (isFont) {
        Q_EMIT fontChanged();
    }
}

void KivTextView::contextMenuEvent(QContextMenuEvent *event)
{
    // Its entries are about selecting.
    event->accept();
}

void KivTextView::setSelectedRange()
{
    // The mouse selects nothing by the interaction flags; this is for those who do it by other ways, as screen readers.
    QTextCursor cursor = textCursor();
    if (cursor.hasSelection()) {
        cursor.clearSelection();
        setTextCursor(cursor);
    }
}

void KivTextView::setPlainMessage(const QString &text)
{
    const auto [shown, hasEndlessWord] = shortened(cleaned(text));
    setWordWrapMode(hasEndlessWord ? QTextOption::WrapAnywhere : QTextOption::WrapAtWordBoundaryOrAnywhere);
    document()->setDefaultFont(systemFont(QFont::Normal, shown));
    setPlainText(shown);
    QTextCharFormat linkFormat;
    linkFormat.setForeground(linkColour());
    linkFormat.setUnderlineStyle(QTextCharFormat::SingleUnderline);
    linkFormat.setAnchor(true);
    QTextCursor cursor(document());
    cursor.beginEditBlock(); // Or each link would lay out all the text anew.
    for (const LinkMatch &link : findLinks(shown).mid(0, maxLinks)) {
        linkFormat.setAnchorHref(link.absoluteString);
        cursor.setPosition(static_cast<int>(link.start));
        cursor.setPosition(static_cast<int>(link.start + link.length), QTextCursor::KeepAnchor);
        cursor.mergeCharFormat(linkFormat);
    }
    cursor.endEditBlock();
}

void KivTextView::setHtmlMessage(int width)
{
    const HtmlGround ground{palette().color(QPalette::Text), palette().color(QPalette::Window)};
    const QString html = cleanHtml(m_message, ground, HtmlTables::Kept);
    document()->setDefaultFont(systemFont(QFont::Normal, html));
    setHtml(html);
    setDocumentWidth(width); // Qt has laid it out at the width of the view, which may still have another.
    if (document()->size().width() > width) {
        setHtml(cleanHtml(m_message, ground, HtmlTables::Dissolved)); // A table would be cut off at the right.
    }
}

QColor KivTextView::linkColour() const
{
    return linkColourOn(palette().color(QPalette::Window));
}
