#include "platform/text/TextMeasure.h"

#include "platform/text/CombiningMarks.h"
#include "platform/text/ScriptRuns.h"
#include "platform/text/SystemFont.h"

#include <QTextLayout>
#include <QTextOption>

#include <algorithm>

namespace
{

/// Within the range of Qt's fixed-point lengths; also stands for no limit.
constexpr qreal maxWidth = 1'000'000;
/// At the usual width even the narrowest letters fill that height. More would only be characters that take no
/// room at all.
constexpr qsizetype maxLength = 150'000;
/// For every line, a layout looks through the word in which it begins, so an endless word is laid out in pieces.
constexpr qsizetype pieceLength = 4096;

/// The layout breaks lines at line separators only.
QString withLineSeparators(QString text)
{
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    for (const char16_t lineBreak : {u'\n', u'\r', u'\u2029'}) {
        text.replace(QChar(lineBreak), QChar(QChar::LineSeparator));
    }
    return text;
}

void layOut(QTextLayout &layout, qreal width)
{
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
    }
    layout.endLayout();
}

} // namespace

float textHeight(const QString &text, float width)
{
    const QStringView measured = firstScriptRuns(QStringView(text).first(std::min(text.size(), maxLength)));
    const QString lines = withoutPiledUpMarks(withLineSeparators(measured.toString()));
    const qreal lineWidth = width > 0 ? std::min<qreal>(width, maxWidth) : maxWidth;
    const QFont font = systemFont(QFont::Normal, lines);
    qreal height = 0;
    qsizetype start = 0;
    qsizetype length = pieceLength;
    while (start < lines.size() && height < qreal{maxMeasuredHeight}) {
        QTextLayout piece(lines.mid(start, length), font);
        layOut(piece, lineWidth);
        // More text may belong to the last line of a piece, so the next piece begins with it.
        const bool isLastPiece = start + length >= lines.size();
        const int complete = isLastPiece ? piece.lineCount() : piece.lineCount() - 1;
        for (int i = 0; i < complete; ++i) {
            height += piece.lineAt(i).height();
        }
        start = isLastPiece ? lines.size() : start + piece.lineAt(complete).textStart();
        length = complete > 0 ? pieceLength : length * 2;
    }
    return static_cast<float>(std::min(height, qreal{maxMeasuredHeight}));
}
