#include "notify/popup/accessible/AccessibleMessage.h"

#include "notify/popup/KivTextView.h"
#include "tests/support/WaitUntil.h"

#include <gtest/gtest.h>

namespace
{

constexpr int messageWidth = 320;

class AccessibleMessageTest : public testing::Test
{
protected:
    AccessibleMessageTest()
    {
        view.resize(messageWidth, 200);
        view.show();
    }

    [[nodiscard]] QAccessibleInterface &message() { return *QAccessible::queryAccessibleInterface(&view); }
    [[nodiscard]] QStringList linkNames()
    {
        QStringList names;
        for (int i = 0; i < message().childCount(); ++i) {
            names.append(message().child(i)->text(QAccessible::Name));
        }
        return names;
    }

    KivTextView view{nullptr};
};

TEST_F(AccessibleMessageTest, IsALabelWithTheWholeText)
{
    view.setMessage(QStringLiteral("One line.\nAnother one."), messageWidth);
    EXPECT_EQ(message().role(), QAccessible::StaticText);
    EXPECT_EQ(message().text(QAccessible::Name), QStringLiteral("One line.\nAnother one."));
    const QAccessibleTextInterface *text = message().textInterface();
    ASSERT_TRUE(text);
    EXPECT_EQ(text->characterCount(), 22);
    EXPECT_EQ(text->text(4, 9), QStringLiteral("line."));
    EXPECT_EQ(text->selectionCount(), 0);
    const QRect first = text->characterRect(0);
    EXPECT_FALSE(first.isEmpty());
    EXPECT_GE(text->characterRect(10).top(), first.bottom()) << "it stands in the second line";
    EXPECT_EQ(text->offsetAtPoint(text->characterRect(4).topLeft() + QPoint(0, 4)), 4);
}

TEST_F(AccessibleMessageTest, HasAPartForEachLinkWhateverItsFormats)
{
    view.setMessage(QStringLiteral("See http://a.example/1 and http://a.example/2"), messageWidth);
    EXPECT_EQ(linkNames(), (QStringList{QStringLiteral("http://a.example/1"), QStringLiteral("http://a.example/2")}));
    view.setMessage(QStringLiteral("<p><a href=\"http://a.example/\">one <b>and</b> the same</a>, "
                                   "<a href=\"http://b.example/\">another</a></p>"),
                    messageWidth);
    EXPECT_EQ(linkNames(), (QStringList{QStringLiteral("one and the same"), QStringLiteral("another")}));
    EXPECT_EQ(message().child(1)->text(QAccessible::Description), QStringLiteral("http://b.example/"));
    EXPECT_EQ(message().child(1)->role(), QAccessible::Link);
    EXPECT_EQ(message().child(1)->parent(), &message());
    EXPECT_EQ(message().indexOfChild(message().child(1)), 1);
    EXPECT_EQ(message().child(2), nullptr);
    EXPECT_TRUE(message().textInterface()->characterRect(5).intersects(message().child(0)->rect()));
}

TEST_F(AccessibleMessageTest, HasNoLinkThatIsNoLongerThere)
{
    view.setMessage(QStringLiteral("http://a.example/1 http://a.example/2"), messageWidth);
    QAccessibleInterface *const second = message().child(1);
    ASSERT_TRUE(second && second->isValid());
    view.setMessage(QStringLiteral("http://a.example/3"), messageWidth);
    EXPECT_FALSE(second->isValid());
    EXPECT_EQ(second->text(QAccessible::Name), QString());
    EXPECT_EQ(linkNames(), QStringList{QStringLiteral("http://a.example/3")});
}

TEST_F(AccessibleMessageTest, TellsOfAPressedLinkOnceTheReaderHasItsAnswer)
{
    view.setMessage(QStringLiteral("http://a.example/1 http://a.example/2"), messageWidth);
    QList<QUrl> clicked;
    QObject::connect(&view, &QTextBrowser::anchorClicked, &view, [&](const QUrl &link) { clicked.append(link); });
    QAccessibleActionInterface *const actions = message().child(1)->actionInterface();
    ASSERT_TRUE(actions);
    ASSERT_EQ(actions->actionNames(), QStringList{QAccessibleActionInterface::pressAction()});
    actions->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(clicked.isEmpty());
    EXPECT_TRUE(waitUntil([&] { return !clicked.isEmpty(); }));
    EXPECT_EQ(clicked, QList<QUrl>{QUrl(QStringLiteral("http://a.example/2"))});
}

TEST_F(AccessibleMessageTest, SaysAtWhichLinkTheKeysAre)
{
    view.setMessage(QStringLiteral("See http://a.example/1 and http://a.example/2"), messageWidth);
    view.activateWindow();
    view.setFocus();
    ASSERT_TRUE(waitUntil([this] { return view.hasFocus(); }));
    EXPECT_TRUE(message().child(0)->state().focusable);
    EXPECT_FALSE(message().child(0)->state().focused);
    view.setFocusedLink(1);
    EXPECT_FALSE(message().child(0)->state().focused);
    EXPECT_TRUE(message().child(1)->state().focused);
    view.clearFocus();
    EXPECT_FALSE(message().child(1)->state().focused);
}

} // namespace
