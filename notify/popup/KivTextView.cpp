#include "notify/popup/KivTextView.h"

#include "notify/text/LinkScan.h"
#include "notify/text/MarkupLimits.h"
#include "platform/text/CombiningMarks.h"
#include "platform/text/ScriptRuns.h"
#include "platform/text/SystemFont.h"

#include <QContextMenuEvent>
#include <QImage>
#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>
#include <cmath>

namespace
{

/// What is shown of a plain text. More than fills a screen; a single word of that length, the worst case, is laid out
/// before a user notices.
constexpr qsizetype maxLength = 8'000;
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

QString shortened(const QString &text)
{
    const QStringView shown = firstScriptRuns(QStringView(text).first(std::min(text.size(), maxLength)));
    if (shown.size() == text.size()) {
        return text;
    }
    const bool cutsPair = shown.back().isHighSurrogate();
    return shown.chopped(cutsPair ? 1 : 0).toString() + QChar(u'\u2026');
}

} // namespace

KivTextView::KivTextView(QWidget *parent)
    : QTextBrowser(parent)
{
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setOpenLinks(false);
    setTextInteractionFlags(Qt::LinksAccessibleByMouse);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false);
    document()->setDocumentMargin(0);
    document()->setUndoRedoEnabled(false);
    document()->setDefaultFont(systemFont(QFont::Normal));
    connect(this, &QTextEdit::selectionChanged, this, &KivTextView::setSelectedRange);
}

void KivTextView::setMessage(const QString &text, int width)
{
    document()->setTextWidth(width);
    // Not trimmed: a blank in front is how an author has markup shown as it is.
    // What is judged is what Qt gets: cleaning may make a table of what is none before.
    const bool mayBeMarkup = text.startsWith(u'<') && text.size() <= maxMarkupBytes;
    const QString markup = mayBeMarkup ? cleaned(text) : QString();
    if (mayBeMarkup && isWithinMarkupLimits(markup)) {
        setHtmlMessage(markup);
    } else {
        setPlainMessage(text);
    }
    document()->setTextWidth(width);
}

float KivTextView::textHeight() const
{
    return static_cast<float>(std::ceil(document()->size().height()));
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
    // Cut first: the rest is work in proportion to the length.
    const QString shown = cleaned(shortened(text));
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

void KivTextView::setHtmlMessage(const QString &text)
{
    document()->setDefaultStyleSheet(QStringLiteral("a { color: %1 }").arg(linkColour().name()));
    setHtml(text);
}

QColor KivTextView::linkColour() const
{
    // Pure blue cannot be read on a dark ground.
    constexpr int half = 128;
    constexpr QColor onDark(0x6c, 0xb4, 0xff);
    return palette().color(QPalette::Window).lightness() < half ? onDark : QColor(Qt::blue);
}
