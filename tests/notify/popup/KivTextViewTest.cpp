#include "notify/popup/KivTextView.h"

#include "tests/support/WaitUntil.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QMouseEvent>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextFrame>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

constexpr int width = 320;

struct Piece {
    QString text;
    QTextCharFormat format;
};

QList<Piece> pieces(const KivTextView &view)
{
    QList<Piece> found;
    for (QTextBlock block = view.document()->begin(); block.isValid(); block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            found.append({it.fragment().text(), it.fragment().charFormat()});
        }
    }
    return found;
}

QStringList links(const KivTextView &view)
{
    QStringList found;
    for (const Piece &piece : pieces(view)) {
        if (piece.format.isAnchor()) {
            found.append(piece.format.anchorHref());
        }
    }
    return found;
}

class KivTextViewTest : public testing::Test
{
protected:
    /// What the view draws, with the text set beforehand.
    QImage picture()
    {
        view.resize(width, static_cast<int>(view.textHeight()));
        return view.grab().toImage();
    }

    /// Whether anything is drawn in that colour.
    bool shows(const QColor &colour)
    {
        const QImage image = picture();
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixelColor(x, y) == colour) {
                    return true;
                }
            }
        }
        return false;
    }

    void drag(QPoint from, QPoint to)
    {
        send(QEvent::MouseButtonPress, from, Qt::LeftButton);
        send(QEvent::MouseMove, to, Qt::LeftButton);
        send(QEvent::MouseButtonRelease, to, Qt::NoButton);
    }

    void send(QEvent::Type type, QPoint at, Qt::MouseButtons buttons)
    {
        const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, at, view.viewport()->mapToGlobal(at), button, buttons, Qt::NoModifier);
        QCoreApplication::sendEvent(view.viewport(), &event);
    }

    KivTextView view{nullptr};
};

TEST_F(KivTextViewTest, UnderlinesAddressesInPlainTextInBlue)
{
    view.setMessage(QStringLiteral("Read http://a.example/b now"), width);
    const QList<Piece> found = pieces(view);
    ASSERT_EQ(found.size(), 3);
    EXPECT_FALSE(found[0].format.isAnchor());
    EXPECT_EQ(found[1].text, QStringLiteral("http://a.example/b"));
    EXPECT_EQ(found[1].format.anchorHref(), QStringLiteral("http://a.example/b"));
    EXPECT_EQ(found[1].format.foreground().color(), QColor(Qt::blue));
    EXPECT_EQ(found[1].format.underlineStyle(), QTextCharFormat::SingleUnderline);
    EXPECT_FALSE(found[2].format.isAnchor());
    EXPECT_EQ(view.document()->defaultFont().pixelSize(), 12);
}

TEST_F(KivTextViewTest, FindsAddressesBehindEveryKindOfLineBreak)
{
    view.setMessage(QStringLiteral("1\r\n2\r3\u20294 http://a.example b"), width);
    EXPECT_EQ(view.toPlainText(), QStringLiteral("1\n2\n3\n4 http://a.example b"));
    const QList<Piece> found = pieces(view);
    ASSERT_EQ(found.size(), 6);
    EXPECT_EQ(found[4].text, QStringLiteral("http://a.example"));
    EXPECT_EQ(links(view), QStringList(QStringLiteral("http://a.example")));
}

TEST_F(KivTextViewTest, HasALighterBlueOnADarkGround)
{
    QPalette dark;
    dark.setColor(QPalette::Window, QColor(0x20, 0x20, 0x20));
    view.setPalette(dark);
    view.setMessage(QStringLiteral("http://a.example"), width);
    EXPECT_GT(pieces(view)[0].format.foreground().color().lightness(), 160);
    view.setMessage(QStringLiteral("<a href='http://a.example'>a</a>"), width);
    EXPECT_GT(pieces(view)[0].format.foreground().color().lightness(), 160);
}

TEST_F(KivTextViewTest, TakesATextForHtmlByItsFirstCharacter)
{
    view.setMessage(QStringLiteral("<p>See <a href=\"http://a.example\">this</a> and http://b.example</p>"), width);
    EXPECT_EQ(view.toPlainText(), QStringLiteral("See this and http://b.example"));
    EXPECT_EQ(links(view), QStringList(QStringLiteral("http://a.example"))) << "a bare address stays text";

    view.setMessage(QStringLiteral(" <p>http://b.example</p>"), width);
    EXPECT_EQ(view.toPlainText(), QStringLiteral(" <p>http://b.example</p>"));
    EXPECT_EQ(links(view), QStringList(QStringLiteral("http://b.example")));
}

TEST_F(KivTextViewTest, ShowsNoSourceOfMarkupHoweverItIsWritten)
{
    for (const char *html :
         {"<p>1 < 2 and 2 < 3</p>", "<body bgcolor=ffffff>1 and 3</body>", "<p title=\"1 > 0\">1 and 3</p>",
          "<table summary=\"News & offers\"><tr><td>1 and</td><td>3</td></tr></table>", "<p title='<b>'>1 and 3",
          "<p>1 and <b>3<i></b></i>", "<o:p>1 and 3</o:p>", "<style>p > b { color: red }</style>1 and 3"}) {
        view.setMessage(QString::fromUtf8(html), width);
        const QString text = view.toPlainText();
        EXPECT_TRUE(text.contains(u'1') && text.contains(u'3')) << html;
        EXPECT_FALSE(text.contains(QLatin1String("<p")) || text.contains(u'>') || text.contains(u'=')) << html;
    }
    for (const char *one : {"<font face=Helvetica>word</font> ", "<p>word", "<li>word", "<table><tr><td>word"}) {
        view.setMessage(QString::fromUtf8(one).repeated(300), width);
        EXPECT_EQ(view.toPlainText().count(QLatin1String("word")), 300) << one;
        EXPECT_FALSE(view.toPlainText().contains(u'<')) << one;
    }
}

TEST_F(KivTextViewTest, DissolvesATableThatIsWiderThanItsText)
{
    QString row = QStringLiteral("<table><tr>");
    for (int i = 0; i < 10; ++i) {
        row += QStringLiteral("<td>incomprehensible%1</td>").arg(i);
    }
    view.setMessage(row + QStringLiteral("</tr></table>"), width);
    EXPECT_LE(view.document()->size().width(), width);
    EXPECT_TRUE(view.toPlainText().contains(QStringLiteral("incomprehensible0\nincomprehensible1")))
        << view.toPlainText().toStdString();
    view.setMessage(QStringLiteral("<table><tr><td>a<td>b</table>"), width);
    EXPECT_TRUE(view.document()->rootFrame()->childFrames().size() == 1) << "a table that fits stays one";
}

TEST_F(KivTextViewTest, JudgesATableAnewAtAnotherWidth)
{
    // Lists are moved in, and nothing makes them narrower.
    const QString html = QStringLiteral("<table><tr>") + QStringLiteral("<td><ul><li><ul><li>a</ul></ul>").repeated(3);
    const auto hasTable = [this] { return view.document()->rootFrame()->childFrames().size() == 1; };
    view.setMessage(html, width);
    EXPECT_TRUE(hasTable());
    view.setTextWidth(200);
    EXPECT_FALSE(hasTable());
    EXPECT_LE(view.document()->size().width(), 200);
    EXPECT_EQ(view.toPlainText().count(u'a'), 3);
    view.setTextWidth(width);
    EXPECT_TRUE(hasTable()) << "there is room again";
    view.setMessage(QStringLiteral("plain"), width);
    view.setTextWidth(200);
    EXPECT_EQ(view.toPlainText(), QStringLiteral("plain")) << "of the text before nothing is left";
}

TEST_F(KivTextViewTest, MeasuresItsText)
{
    view.setMessage(QStringLiteral("x"), width);
    const float line = view.textHeight();
    EXPECT_GT(line, 11);
    EXPECT_LT(line, 20);
    view.setMessage(QStringLiteral("x\nx\nx"), width);
    EXPECT_EQ(view.textHeight(), 3 * line);
    view.setMessage(QStringLiteral("word ").repeated(40), width);
    EXPECT_GT(view.textHeight(), 2 * line);
}

TEST_F(KivTextViewTest, SelectsNothing)
{
    view.setMessage(QStringLiteral("Some words to select, and a link http://a.example"), width);
    view.resize(width, 60);
    view.show();
    drag({2, 5}, {200, 7});
    EXPECT_FALSE(view.textCursor().hasSelection());
    send(QEvent::MouseButtonDblClick, {10, 5}, Qt::LeftButton);
    EXPECT_FALSE(view.textCursor().hasSelection());
    view.selectAll();
    EXPECT_FALSE(view.textCursor().hasSelection());
}

TEST_F(KivTextViewTest, TellsOfAClickOnALink)
{
    QList<QUrl> clicked;
    QObject::connect(&view, &QTextBrowser::anchorClicked, [&clicked](const QUrl &link) { clicked.append(link); });
    view.setMessage(QStringLiteral("http://a.example/?q=x%26y&z=%C3%A9"), width);
    view.resize(width, 60);
    view.show();
    drag({10, 6}, {10, 6});
    EXPECT_EQ(clicked, QList<QUrl>{QUrl(QStringLiteral("http://a.example/?q=x%26y&z=%C3%A9"))});
    drag({10, 50}, {10, 50});
    EXPECT_EQ(clicked.size(), 1) << "beside it";
    EXPECT_EQ(view.toPlainText(), QStringLiteral("http://a.example/?q=x%26y&z=%C3%A9"));
}

TEST_F(KivTextViewTest, OpensNoFile)
{
    QTemporaryDir directory;
    const QString imagePath = directory.filePath(QStringLiteral("red.png"));
    QImage red(40, 40, QImage::Format_RGB32);
    red.fill(Qt::red);
    ASSERT_TRUE(red.save(imagePath));
    const QString sheetPath = directory.filePath(QStringLiteral("a.css"));
    QFile sheet(sheetPath);
    ASSERT_TRUE(sheet.open(QIODevice::WriteOnly) && sheet.write("p { background: #ff0000 }") > 0);
    sheet.close();

    const char *messages[] = {
        "<p>x<img src=\"%1\"></p>",
        "<p>x<img src=\"file://%1\"></p>",
        "<p style=\"background-image: url(%1)\">words</p>",
        "<table background=\"%1\"><tr><td>words</td></tr></table>",
        "<body background=\"%1\">words</body>",
        "<link rel=\"stylesheet\" type=\"text/css\" href=\"%2\"><p>words</p>",
        "<html><head><link rel=stylesheet type='text/css' href='file://%2'></head><body><p>words</p></body></html>",
        "<style>@import url(%2);</style><p>words</p>",
        "<html><head><link rel=stylesheet type='text/css' href='%1'></head><body>x<img src=\"%1\"></body></html>",
        "<ul style=\"list-style-image: url(%1)\"><li>words</li></ul>",
    };
    for (const char *message : messages) {
        view.setMessage(
            QString::fromUtf8(message).replace(QLatin1String("%1"), imagePath).replace(QLatin1String("%2"), sheetPath),
            width);
        EXPECT_FALSE(shows(Qt::red)) << message;
    }
    // The same is seen when it is there to be seen.
    view.setMessage(QStringLiteral("<p style=\"background: #ff0000\">words</p>"), width);
    EXPECT_TRUE(shows(Qt::red));
}

TEST_F(KivTextViewTest, DoesNotEvenLookAtAFile)
{
    // Whoever opens a pipe for reading lets its writer in.
    QTemporaryDir directory;
    const QByteArray pipe = directory.filePath(QStringLiteral("pipe")).toLocal8Bit();
    ASSERT_EQ(::mkfifo(pipe.constData(), 0600), 0);
    const auto isBeingRead = [&pipe] {
        const int writer = ::open(pipe.constData(), O_WRONLY | O_NONBLOCK);
        if (writer >= 0) {
            ::close(writer);
        }
        return writer >= 0;
    };
    const int reader = ::open(pipe.constData(), O_RDONLY | O_NONBLOCK);
    ASSERT_TRUE(isBeingRead()) << "the test sees it when somebody does";
    ::close(reader);
    // Were it opened, this would wait for a writer for ever.
    view.setMessage(
        QStringLiteral("<html><head><link rel=stylesheet type='text/css' href='%1'></head><body>x<img src=\"%1\">"
                       "</body></html>")
            .arg(QString::fromLocal8Bit(pipe)),
        width);
    static_cast<void>(picture());
    EXPECT_TRUE(view.toPlainText().startsWith(u'x')) << "or Qt has had no reason to look";
    EXPECT_FALSE(isBeingRead());
}

TEST_F(KivTextViewTest, ConnectsToNobody)
{
    QTcpServer server;
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    const QString address = QStringLiteral("http://127.0.0.1:%1/").arg(server.serverPort());
    view.setMessage(QStringLiteral("<html><head><link rel=stylesheet type='text/css' href='%1a.css'>"
                                   "<style>@import url(%1b.css);</style></head><body>"
                                   "<p style='background-image: url(%1c.png)'>x<img src='%1d.png'></p></body></html>")
                        .arg(address),
                    width);
    static_cast<void>(picture());
    EXPECT_TRUE(view.toPlainText().startsWith(u'x')) << "or Qt has had no reason to look";
    EXPECT_FALSE(server.waitForNewConnection(200));
    EXPECT_FALSE(server.hasPendingConnections());
}

TEST_F(KivTextViewTest, BearsAnyText)
{
    const auto times = [](int count, const char *text) { return QString::fromUtf8(text).repeated(count); };
    const QString texts[] = {
        {},
        QString(1000, QChar(0)) + QLatin1Char('x'),
        QString(QChar(0xd800)) + QChar(0xdc00) + QChar(0xdc00) + QChar(0xd800),
        QString(QChar(0xfdd0)) + QChar(0xfdd1) + QChar(0xfffc) + QChar(0xfffe) + QChar(0xffff),
        QStringLiteral("<p>&#xfdd0;&#xfdd1;&#xfffc;&#0;&#x2029;&#xd800;&#1114112;&#99999999999;</p>"),
        QLatin1Char('<') + QString(QChar(0)) + QChar(0xfdd0) + QStringLiteral("p>x"),
        times(5000, "<table><tr><td>"),
        times(50'000, "lorem ipsum "),
        times(10'000, "W"),
        times(60'000, "\xd7\xa9\xd7\x9c\xd7\x95\xd7\x9d "),
        times(600'000, "\n"),
        QLatin1Char('a') + times(100'000, "\xcc\x81"),
        times(60'000, "www.x.yy "),
        times(60'000, "<"),
        times(10'000, "\xe2\x80\xab"
                      "a"),
        QStringLiteral("<p style='font-size:9999px'>Wide words</p>"),
        QStringLiteral("<h1>").repeated(90),
        QStringLiteral("<"),
        QStringLiteral("<!--"),
        QStringLiteral("</"),
    };
    for (const QString &text : texts) {
        QElapsedTimer time;
        time.start();
        view.setMessage(text, width);
        static_cast<void>(picture());
        // So slow a build there is none; what the limits keep away takes minutes.
        EXPECT_LT(time.elapsed(), 20'000) << qPrintable(text.left(40));
        EXPECT_LE(view.toPlainText().size(), 64 * 1024 + 1);
    }
}

TEST_F(KivTextViewTest, ShowsAllOfATextOfSixtyFourKilobytesAndThenAnEllipsis)
{
    const QString words = QStringLiteral("word ").repeated(13'107) + QLatin1Char('x');
    ASSERT_EQ(words.size(), 65'536);
    for (const QString &text :
         {words, QString(words).replace(QStringLiteral("word word word "), QStringLiteral("word\nword word ")),
          QStringLiteral("x").repeated(65'536), QStringLiteral("\u00e9").repeated(32'768),
          QStringLiteral("\u65b0\u7248\u672c").repeated(7000)}) {
        view.setMessage(text, width);
        EXPECT_EQ(view.toPlainText(), text) << text.left(10).toStdString();
    }
    view.setMessage(words + QStringLiteral("y"), width);
    EXPECT_EQ(view.toPlainText(), words + QChar(u'\u2026'));
    view.setMessage(QStringLiteral("\u00e9").repeated(32'769), width);
    EXPECT_EQ(view.toPlainText(), QStringLiteral("\u00e9").repeated(32'768) + QChar(u'\u2026'));
    view.setMessage(QStringLiteral("\n").repeated(8001), width);
    EXPECT_EQ(view.toPlainText(), QStringLiteral("\n").repeated(8000) + QChar(u'\u2026'));
    view.setMessage(QStringLiteral("a\u05d0").repeated(10'000), width);
    EXPECT_EQ(view.toPlainText(), QStringLiteral("a\u05d0").repeated(4000) + QStringLiteral("a\u2026"));
}

TEST_F(KivTextViewTest, KnowsWhichPartsOfItsLinesALinkTakes)
{
    const QString address = QStringLiteral("http://a.example/") + QStringLiteral("word-").repeated(20);
    view.setMessage(QStringLiteral("First line\nSee ") + address + QStringLiteral(" for more"), width);
    view.resize(width, static_cast<int>(view.textHeight()));
    view.show();
    ASSERT_EQ(view.links().size(), 1);
    const KivTextView::Link &link = view.links().first();
    const QRegion region = view.regionOf(link);
    const auto inViewport = [this](int position) {
        const QRect gap = view.placeOf(position);
        return QRect(view.viewport()->mapFromGlobal(gap.topLeft()), gap.size());
    };
    for (int i = link.start; i + 1 < link.start + link.length; ++i) {
        if (inViewport(i).top() == inViewport(i + 1).top()) {
            EXPECT_TRUE(region.contains((inViewport(i).center() + inViewport(i + 1).center()) / 2)) << i;
        }
    }
    EXPECT_GT(inViewport(link.start + link.length).top(), inViewport(link.start).top()) << "it is longer than a line";
    EXPECT_FALSE(region.contains(inViewport(3).center())) << "the first line is not its";
    EXPECT_FALSE(region.contains(inViewport(link.start - 3).center()));
    EXPECT_FALSE(region.contains(inViewport(link.start + link.length + 3).center()));
}

TEST_F(KivTextViewTest, ScrollsToALinkAndKnowsWhereItIsThen)
{
    view.setMessage(QStringLiteral("http://a.example/") + QStringLiteral("\nline").repeated(40) +
                        QStringLiteral("\nhttp://b.example/"),
                    width);
    view.resize(width, 100);
    view.show();
    ASSERT_EQ(view.links().size(), 2);
    const auto isSeen = [this](int link) {
        const QRect place = view.regionOf(view.links().at(link)).boundingRect();
        return view.viewport()->rect().contains(place.adjusted(1, 1, -1, -1));
    };
    EXPECT_TRUE(isSeen(0));
    EXPECT_FALSE(isSeen(1));
    view.showLink(view.links().at(1));
    EXPECT_TRUE(isSeen(1));
    EXPECT_FALSE(isSeen(0));
    view.showLink(view.links().at(0));
    EXPECT_TRUE(isSeen(0));
}

} // namespace

TEST_F(KivTextViewTest, FormsTheLettersOfScriptsThatNeedItHoweverTheyAreWritten)
{
    for (const QString &text : {QStringLiteral("السلام"), QStringLiteral("<p><b>السلام</b></p>"),
                                QStringLiteral("<p>&#1575;&#1604;&#1587;</p>")}) {
        view.setMessage(text, width);
        EXPECT_EQ(view.document()->defaultFont().styleStrategy(), QFont::PreferDefault) << text.toStdString();
    }
    for (const QString &text : {QStringLiteral("Peace"), QStringLiteral("<p>Peace &eacute;</p>")}) {
        view.setMessage(text, width);
        EXPECT_EQ(view.document()->defaultFont().styleStrategy(), QFont::PreferNoShaping) << text.toStdString();
    }
}

TEST_F(KivTextViewTest, KeepsItsSizeAndTakesTheFamilyWhenTheApplicationsFontChanges)
{
    for (const QString &text : {QStringLiteral("A text"), QStringLiteral("<p>A <b>text</b></p>")}) {
        view.setMessage(text, width);
        const QFont before = QApplication::font();
        int changes = 0;
        const auto counting = QObject::connect(&view, &KivTextView::fontChanged, [&] { ++changes; });
        QFont other = before;
        other.setFamilies({QStringLiteral("DejaVu Serif")});
        other.setPointSizeF(40);
        QApplication::setFont(other);
        EXPECT_TRUE(waitUntil([&] { return changes > 0; }));
        EXPECT_EQ(view.document()->defaultFont().families(), other.families()) << text.toStdString();
        EXPECT_EQ(view.document()->defaultFont().pixelSize(), 12) << text.toStdString();
        changes = 0;
        QApplication::setFont(before);
        EXPECT_TRUE(waitUntil([&] { return changes > 0; }));
        EXPECT_EQ(view.document()->defaultFont().pixelSize(), 12) << text.toStdString();
        QObject::disconnect(counting);
    }
}

TEST_F(KivTextViewTest, TakesTheColoursOfAnotherPaletteAtOnce)
{
    view.setMessage(QStringLiteral("See https://example.com/ now"), width);
    const auto linkColour = [&] {
        for (const Piece &piece : pieces(view)) {
            if (piece.format.isAnchor()) {
                return piece.format.foreground().color();
            }
        }
        return QColor();
    };
    const QColor onLight = linkColour();
    ASSERT_TRUE(onLight.isValid());
    QPalette dark = view.palette();
    dark.setColor(QPalette::Window, QColor(0x20, 0x20, 0x20));
    dark.setColor(QPalette::Text, Qt::white);
    view.setPalette(dark);
    EXPECT_GT(linkColour().lightness(), onLight.lightness());
}
