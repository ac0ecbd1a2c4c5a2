#include "menu/AssociatedObjects.h"

#include <QVariant>

#include <gtest/gtest.h>

#include <memory>

TEST(AssociatedObjects, AreFoundUnderTheirKey)
{
    QObject holder;
    QObject window;
    setAssociatedObject(holder, "FakeWindow", &window);
    EXPECT_EQ(associatedObject(holder, "FakeWindow"), &window);
    EXPECT_EQ(associatedObject(holder, "Other"), nullptr);
}

TEST(AssociatedObjects, AreAllRemovedAtOnceAndNothingElseIs)
{
    QObject holder;
    QObject first;
    QObject second;
    holder.setProperty("Qt's own", QVariant(7));
    setAssociatedObject(holder, "FakeWindow", &first);
    setAssociatedObject(holder, "Other", &second);
    removeAssociatedObjects(holder);
    EXPECT_EQ(associatedObject(holder, "FakeWindow"), nullptr);
    EXPECT_EQ(associatedObject(holder, "Other"), nullptr);
    EXPECT_EQ(holder.dynamicPropertyNames(), QList<QByteArray>{"Qt's own"});
}

TEST(AssociatedObjects, AreNotOwnedAndGoWithTheirObject)
{
    QObject holder;
    auto window = std::make_unique<QObject>();
    setAssociatedObject(holder, "FakeWindow", window.get());
    window.reset();
    EXPECT_EQ(associatedObject(holder, "FakeWindow"), nullptr);
}
