#include "platform/alert/AlertPanel.h"

#include "platform/alert/AlertIcon.h"
#include "tests/support/LogLines.h"
#include "tests/support/WaitUntil.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using namespace std::chrono_literals;

const AlertPanel::Texts threeButtons{QStringLiteral("Title"), QStringLiteral("Message"), QStringLiteral("Close"),
                                     QStringLiteral("Home..."), QStringLiteral("Credits")};
const AlertPanel::Texts question{
    QStringLiteral("Title"), QStringLiteral("Message"), QStringLiteral("Yes"), QStringLiteral("No"), {}};
const AlertPanel::Texts oneButton{QStringLiteral("Title"), QStringLiteral("Message"), QStringLiteral("Ok"), {}, {}};

QPushButton *button(const AlertPanel &panel, const QString &text)
{
    for (QPushButton *candidate : panel.findChildren<QPushButton *>()) {
        if (candidate->text() == text) {
            return candidate;
        }
    }
    return nullptr;
}

/// Shows the panel and does something as soon as it is up.
AlertPanel::Response respond(const AlertPanel::Texts &texts, const std::function<void(AlertPanel &)> &react)
{
    AlertPanel panel(AlertPanel::Style::Informational, texts);
    QTimer::singleShot(0, &panel, [&] { react(panel); });
    return panel.runModal();
}

void press(AlertPanel &panel, Qt::Key key)
{
    QWidget *target = panel.focusWidget() ? panel.focusWidget() : &panel;
    QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier);
    QCoreApplication::sendEvent(target, &down);
    QKeyEvent up(QEvent::KeyRelease, key, Qt::NoModifier);
    QCoreApplication::sendEvent(target, &up);
}

} // namespace

TEST(AlertPanel, AnswersWithTheButtonThatWasPressed)
{
    EXPECT_EQ(respond(threeButtons, [](AlertPanel &p) { button(p, QStringLiteral("Close"))->click(); }), 1);
    EXPECT_EQ(respond(threeButtons, [](AlertPanel &p) { button(p, QStringLiteral("Home..."))->click(); }), 0);
    EXPECT_EQ(respond(threeButtons, [](AlertPanel &p) { button(p, QStringLiteral("Credits"))->click(); }), -1);
}

TEST(AlertPanel, TakesReturnForTheDefaultButton)
{
    EXPECT_EQ(respond(threeButtons, [](AlertPanel &p) { press(p, Qt::Key_Return); }), 1);
    EXPECT_EQ(respond(oneButton, [](AlertPanel &p) { press(p, Qt::Key_Return); }), 1);
}

TEST(AlertPanel, TakesEscapeForTheAnswerNoToAQuestionAndElseForTheDefaultButton)
{
    EXPECT_EQ(respond(question, [](AlertPanel &p) { press(p, Qt::Key_Escape); }), 0);
    EXPECT_EQ(respond(threeButtons, [](AlertPanel &p) { press(p, Qt::Key_Escape); }), 1);
    EXPECT_EQ(respond(oneButton, [](AlertPanel &p) { press(p, Qt::Key_Escape); }), 1);
}

TEST(AlertPanel, AnswersNothingWhenTheApplicationEnds)
{
    AlertPanel::Response response = AlertPanel::Default;
    QTimer::singleShot(0, qApp,
                       [&] { response = respond(threeButtons, [](AlertPanel &) { QCoreApplication::quit(); }); });
    QApplication::exec();
    EXPECT_EQ(response, -2);
}

TEST(AlertPanel, SaysWhatItAsksAndWhatTheAnswerWas)
{
    using testing::ElementsAre;
    const std::string asks = "kiv.agent: asks: \"Title\"";
    LogLines log;
    const auto linesAfter = [&log](const std::function<void(AlertPanel &)> &react) {
        static_cast<void>(respond(threeButtons, react));
        return log.take();
    };
    EXPECT_THAT(linesAfter([](AlertPanel &p) { button(p, QStringLiteral("Close"))->click(); }),
                ElementsAre(asks, "kiv.agent: answered: the default button"));
    EXPECT_THAT(linesAfter([](AlertPanel &p) { button(p, QStringLiteral("Home..."))->click(); }),
                ElementsAre(asks, "kiv.agent: answered: the alternate button"));
    EXPECT_THAT(linesAfter([](AlertPanel &p) { button(p, QStringLiteral("Credits"))->click(); }),
                ElementsAre(asks, "kiv.agent: answered: the other button"));
    EXPECT_THAT(linesAfter([](AlertPanel &p) { p.close(); }), ElementsAre(asks, "kiv.agent: answered: not at all"));
}

TEST(AlertPanel, HasOnlyTheButtonsThatAreNamed)
{
    const AlertPanel panel(AlertPanel::Style::Informational, oneButton);
    EXPECT_EQ(panel.findChildren<QPushButton *>().size(), 1);
}

TEST(AlertPanel, ShowsTheTitleInBoldAboveTheMessage)
{
    AlertPanel panel(AlertPanel::Style::Informational, oneButton);
    panel.show();
    QLabel *title = nullptr;
    QLabel *message = nullptr;
    for (QLabel *label : panel.findChildren<QLabel *>()) {
        (label->text() == QStringLiteral("Title")     ? title
         : label->text() == QStringLiteral("Message") ? message
                                                      : label) = label;
    }
    ASSERT_TRUE(title && message);
    EXPECT_TRUE(title->font().bold());
    EXPECT_FALSE(message->font().bold());
    EXPECT_LT(title->geometry().bottom(), message->geometry().top());
}

TEST(AlertPanel, ShowsAPictureThatTellsAFailureFromAnInformation)
{
    const auto pictureOf = [](AlertPanel::Style style) {
        const AlertPanel panel(style, oneButton);
        for (const QLabel *label : panel.findChildren<QLabel *>()) {
            if (!label->pixmap().isNull()) {
                return label->pixmap().toImage();
            }
        }
        return QImage();
    };
    const QImage information = pictureOf(AlertPanel::Style::Informational);
    const QImage failure = pictureOf(AlertPanel::Style::Critical);
    EXPECT_EQ(information.size(), QSize(48, 48));
    EXPECT_EQ(failure.size(), QSize(48, 48));
    EXPECT_NE(information, failure);
    EXPECT_EQ(qAlpha(information.pixel(0, 0)), 0);
    EXPECT_EQ(qAlpha(information.pixel(24, 5)), 255);
}

TEST(AlertPanel, LinesTheColumnsOfTheMessageUp)
{
    AlertPanel panel(AlertPanel::Style::Informational,
                     {QStringLiteral("Title"),
                      QStringLiteral("\nProduct:\t\tfirst\nA far longer name:\t\tsecond\n\t\t\t\tthird\n\n"),
                      QStringLiteral("Close"),
                      {},
                      {}});
    panel.show();
    std::vector<QPoint> places;
    for (const QLabel *label : panel.findChildren<QLabel *>()) {
        for (const char *text : {"first", "second", "third"}) {
            if (label->text() == QLatin1String(text)) {
                places.push_back(label->geometry().topLeft());
            }
        }
    }
    ASSERT_EQ(places.size(), 3U);
    EXPECT_EQ(places[0].x(), places[1].x());
    EXPECT_EQ(places[1].x(), places[2].x());
    EXPECT_LT(places[0].y(), places[1].y());
    EXPECT_LT(places[1].y(), places[2].y());
}

TEST(AlertPanel, TakesMarkupForText)
{
    const AlertPanel panel(AlertPanel::Style::Informational,
                           {QStringLiteral("<b>t</b>"), QStringLiteral("<i>m</i>"), QStringLiteral("Ok"), {}, {}});
    for (const QLabel *label : panel.findChildren<QLabel *>()) {
        EXPECT_TRUE(label->text().isEmpty() || label->textFormat() == Qt::PlainText) << qPrintable(label->text());
    }
}

TEST(AlertPanel, StaysAboveOtherWindowsAndTellsAssistiveTechnologyItsText)
{
    const AlertPanel panel(AlertPanel::Style::Critical, oneButton);
    EXPECT_TRUE(panel.windowFlags() & Qt::WindowStaysOnTopHint);
    EXPECT_EQ(panel.accessibleName(), QStringLiteral("Title"));
    EXPECT_EQ(panel.accessibleDescription(), QStringLiteral("Message"));
}

TEST(AlertPanel, FormsTheLettersOfScriptsThatNeedIt)
{
    const AlertPanel panel(AlertPanel::Style::Informational,
                           {QStringLiteral("Title"), QStringLiteral("السلام"), QStringLiteral("Ok"), {}, {}});
    for (const QLabel *label : panel.findChildren<QLabel *>()) {
        EXPECT_EQ(label->font().styleStrategy(), QFont::PreferDefault);
    }
    const AlertPanel plain(AlertPanel::Style::Informational, oneButton);
    for (const QLabel *label : plain.findChildren<QLabel *>()) {
        EXPECT_EQ(label->font().styleStrategy(), QFont::PreferNoShaping);
    }
}

TEST(AlertIcon, IsDrawnInThePixelsOfTheScreen)
{
    const std::pair<qreal, int> table[] = {{1, 48}, {1.25, 60}, {1.5, 72}, {2, 96}};
    for (const auto &[ratio, pixels] : table) {
        const QPixmap icon = alertIcon(AlertSign::Information, 48, ratio);
        EXPECT_EQ(icon.size(), QSize(pixels, pixels));
        EXPECT_EQ(icon.devicePixelRatio(), ratio);
        const QImage middle = icon.toImage().copy(pixels * 21 / 48 + 1, pixels * 22 / 48, pixels * 4 / 48, pixels / 4);
        for (int x = 0; x < middle.width(); ++x) {
            EXPECT_EQ(middle.pixelColor(x, middle.height() / 2), QColor(Qt::white)) << "the stem, with hard edges";
        }
    }
}
