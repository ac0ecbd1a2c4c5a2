#include "notify/popup/KivNotificationWindow.h"
#include "platform/MainScreen.h"
#include "tests/session/support/XView.h"
#include "tests/support/TestXServer.h"
#include "tests/support/WaitUntil.h"

#include <QDir>
#include <QFile>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpression>
#include <QTextBrowser>
#include <QTextDocument>
#include <QTextFormat>

#include <gtest/gtest.h>

#include <unistd.h>

namespace
{

struct Message {
    const char *name; ///< Of a file in messages/.
    const char *first;
    const char *last; ///< Words near its beginning and near its end, as they are read.
};

/// Messages as makers of software write them, and as the programs do that they write them with.
const Message messages[] = {
    {"attributes_unquoted", "First", "Second"},
    {"callouts", "Note: your licence", "\u201cIt simply works.\u201d"},
    {"changelog_nested_lists", "kivserver --dump wrote to /tmp", "4.1.9"},
    {"chinese_russian_greek", "\u65b0\u7248\u672c", "\u041d\u043e\u0432\u0430\u044f"},
    {"dark_box", "Security notice", "would be white on a white page"},
    {"emoji", "\U0001F389 Version 4.2 is here!", "Thank you \U0001F600"},
    {"entities", "20 \u20ac \u2013 30 \u20ac", "AT&T R&D &unknown; 3 < 4 && 5 > 4"},
    {"font_soup", "Welcome", "H2O x2"},
    {"html5_sections", "Sound is now passed on", "Media keys"},
    {"japanese", "\u65b0\u3057\u3044\u30d0\u30fc\u30b8\u30e7\u30f3", "\u4efb\u610f\u306e\u89e3\u50cf\u5ea6"},
    {"less_than_signs", "If memory < 2 GB and disk > 10 GB", "<-- see there. xz <3"},
    {"long_words", "https://www.example.com/download", "gesellschaft"},
    {"many_fonts", "1 one", "23 twenty-three"},
    {"markdown_converted", "Crash when size < 2 && !ready", "menu"},
    {"misnested", "bold both italic plain", "self-closed paragraph"},
    {"newsletter_builder_blocks", "Confirm your address", "valid for 24 hours"},
    {"newsletter_layout_tables", "Spring news", "Town"},
    {"newsletter_weekly_digest", "Dear customer", "Street 1, Town"},
    {"office_export", "Maintenance on Sunday", "Log out"},
    {"old_school", "ATTENTION", "Webmaster"},
    {"pictures", "Our new building", "A map"},
    {"preformatted", "if [ 1 -lt 2 ]; then", "wheel"},
    {"release_table", "Which version runs where", "* as of today"},
    {"right_to_left", "\u05d2\u05e8\u05e1\u05d4", "\u0645\u0631\u062d\u0628\u0627"},
    {"script_and_forms", "Please switch scripts on.", "Send"},
    {"two_columns", "Nothing changes.", "Page 1 of 1"},
    {"unclosed_everything", "ends in three days", "help@example.com"},
    {"update_short", "Kivune Server 4.2 is ready", "before you update"},
    {"wide_table", "Switzerland", "none whatsoever"},
    {"wrapped_fragment", "Dear user,", "Your administrator"},
};

/// What only a source has: tags that HTML knows, attributes, style sheets and references to characters.
QString sourceIn(const QString &text)
{
    static const QRegularExpression source(
        QStringLiteral(
            "</?(a|b|blockquote|body|br|center|code|div|em|font|form|h[1-6]|head|hr|html|i|img|input|li|link|meta|"
            "ol|p|pre|script|span|strong|style|table|t[dhr]|title|u|ul|[ovw]:\\w+)\\b[^<]*>|<!|"
            "\\b(href|style|class|src|bgcolor|width|align)=|\\{\\s*[a-z-]+\\s*:\\s[^}]*\\}|font-family|mso-|"
            "&(nbsp|amp|lt|gt|quot|eacute|#\\w+);"),
        QRegularExpression::CaseInsensitiveOption);
    return source.match(text).captured();
}

class MessagesTest : public testing::TestWithParam<Message>
{
protected:
    ~MessagesTest() override
    {
        if (window) {
            window->close();
        }
        EXPECT_TRUE(waitUntil([this] { return !window && eyes.windowsOf(::getpid()).isEmpty(); }));
    }

    const XView eyes{testXServer()};
    QPointer<KivNotificationWindow> window;
};

TEST_P(MessagesTest, ShowsItsWordsAndNothingOfItsSource)
{
    QFile file(QStringLiteral(KIV_MESSAGES "/%1.html").arg(QLatin1String(GetParam().name)));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const auto record = std::make_shared<KivNotification>();
    record->setMessageType(2);
    record->setMessageText(QString::fromUtf8(file.readAll()));
    window = new KivNotificationWindow(record);
    window->showAtScreenPoint({10, 10}, -1);
    ASSERT_TRUE(waitUntil([this] { return window->windowOpacity() == 1; }));
    ASSERT_EQ(eyes.windowsOf(::getpid()).size(), 1);
    const QRect place = eyes.windowsOf(::getpid()).first().geometry;
    EXPECT_TRUE(QRect(0, 0, 1280, 800).contains(place));

    const QTextBrowser *const view = window->findChild<QTextBrowser *>();
    QString text = view->toPlainText().remove(QChar(u'\u200b'));
    EXPECT_TRUE(text.contains(QString::fromUtf8(GetParam().first))) << text.toStdString();
    EXPECT_TRUE(text.contains(QString::fromUtf8(GetParam().last))) << text.toStdString();
    EXPECT_EQ(sourceIn(text).toStdString(), "") << text.toStdString();
    EXPECT_FALSE(text.contains(QStringLiteral("preheader"))) << "which is hidden";
    EXPECT_LE(view->document()->size().width(), view->viewport()->width()) << "cut off at the right";
    for (const QTextFormat &format : view->document()->allFormats()) {
        EXPECT_FALSE(format.isImageFormat()) << "which might be loaded";
        EXPECT_NE(format.background().style(), Qt::TexturePattern);
    }

    // To be looked at.
    if (const QString pictures = qEnvironmentVariable("KIV_PICTURES"); !pictures.isEmpty()) {
        EXPECT_TRUE(eyes.grab(place).save(QStringLiteral("%1/%2.png").arg(pictures, QLatin1String(GetParam().name))));
    }
}

INSTANTIATE_TEST_SUITE_P(Of, MessagesTest, testing::ValuesIn(messages),
                         [](const auto &message) { return std::string(message.param.name); });

TEST(Messages, AreAllTried)
{
    const QStringList files = QDir(QStringLiteral(KIV_MESSAGES)).entryList({QStringLiteral("*.html")});
    EXPECT_EQ(files.size(), qsizetype(std::size(messages)));
}

} // namespace
