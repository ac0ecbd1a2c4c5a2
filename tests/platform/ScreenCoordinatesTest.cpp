#include "platform/ScreenCoordinates.h"

#include <gtest/gtest.h>

static void PrintTo(const NSPoint &point, std::ostream *out)
{
    *out << point.x << "," << point.y;
}

static void PrintTo(const NSRect &rect, std::ostream *out)
{
    *out << rect.origin.x << "," << rect.origin.y << " " << rect.size.width << "x" << rect.size.height;
}

namespace
{

const ScreenCoordinates single{QRect(0, 0, 1280, 800), 1};
const ScreenCoordinates rightOfAnother{QRect(1920, 120, 1280, 800), 1};
const ScreenCoordinates fine{QRect(0, 0, 2560, 1600), 2};
const ScreenCoordinates fineBelow{QRect(100, 900, 2560, 1600), 2};
const ScreenCoordinates fineBesideAnother{QRect(0, 0, 1920, 1080), 1.25, {QRect(1920, 200, 1920, 1080)}};
const ScreenCoordinates fineRightOfAnother{QRect(1920, 0, 1920, 1080), 2, {QRect(0, 100, 1920, 980)}};
const ScreenCoordinates none{QRect(), 1};

struct PointRow {
    ScreenCoordinates screen;
    NSPoint point;
    QPoint device;
    QPoint qt;
};

const PointRow points[] = {
    {single, {0, 800}, {0, 0}, {0, 0}},
    {single, {0, 0}, {0, 800}, {0, 800}},
    {single, {400, 763}, {400, 37}, {400, 37}},
    {single, {1400, 900}, {1400, -100}, {1400, -100}},
    {rightOfAnother, {0, 800}, {1920, 120}, {1920, 120}},
    {rightOfAnother, {-20, 10}, {1900, 910}, {1900, 910}},
    {fine, {1000, 763}, {2000, 74}, {1000, 37}},
    {fineBelow, {0, 800}, {100, 900}, {100, 900}},
    {fineBelow, {50, 700}, {200, 1100}, {150, 1000}},
    {fineBesideAnother, {1000, 824}, {1250, 50}, {1000, 40}},
    {fineBesideAnother, {2400, 664}, {3000, 250}, {2784, 240}},
    {fineBesideAnother, {2400, 800}, {3000, 80}, {2400, 64}},
    {fineRightOfAnother, {100, 500}, {2120, 80}, {2020, 40}},
    {fineRightOfAnother, {-860, 440}, {200, 200}, {100, 150}},
    {none, {10, -27}, {10, 27}, {10, 27}},
};

TEST(ScreenCoordinates, CountsPointsFromTheMainScreensBottomLeftCorner)
{
    for (const PointRow &row : points) {
        EXPECT_EQ(row.screen.fromDevice(row.device), row.point);
        EXPECT_EQ(row.screen.toDevice(row.point), row.device);
        EXPECT_EQ(row.screen.toQt(row.point), row.qt);
    }
}

TEST(ScreenCoordinates, KeepsHalfPointsOfAFineScreen)
{
    EXPECT_EQ(fine.fromDevice(QPoint(2001, 75)), (NSPoint{1000.5F, 762.5F}));
    EXPECT_EQ(fine.toDevice(NSPoint{1000.5F, 762.5F}), QPoint(2001, 75));
}

struct RectRow {
    ScreenCoordinates screen;
    NSRect rect;
    QRect device;
    QRect qt;
};

const RectRow rects[] = {
    {single, {{1254, 773}, {22, 22}}, {1254, 5, 22, 22}, {1254, 5, 22, 22}},
    {rightOfAnother, {{1254, 773}, {22, 22}}, {3174, 125, 22, 22}, {3174, 125, 22, 22}},
    {fine, {{1254, 773}, {22, 22}}, {2508, 10, 44, 44}, {1254, 5, 22, 22}},
    {fineBelow, {{10, 700}, {20, 30}}, {120, 1040, 40, 60}, {110, 970, 20, 30}},
    {fineBesideAnother, {{2400, 624}, {20, 40}}, {3000, 250, 25, 50}, {2784, 240, 20, 40}},
    {fineRightOfAnother, {{-860, 420}, {30, 20}}, {200, 200, 60, 40}, {100, 150, 30, 20}},
    {none, {{0, -22}, {22, 22}}, {0, 0, 22, 22}, {0, 0, 22, 22}},
};

TEST(ScreenCoordinates, GivesARectangleItsBottomLeftCornerAsOrigin)
{
    for (const RectRow &row : rects) {
        EXPECT_EQ(row.screen.fromDevice(row.device), row.rect);
        EXPECT_EQ(row.screen.toDevice(row.rect), row.device);
        EXPECT_EQ(row.screen.fromQt(row.qt), row.rect);
    }
}

TEST(ScreenCoordinates, HasAFrameThatStartsAtTheOrigin)
{
    EXPECT_EQ(rightOfAnother.frame(), (NSRect{{0, 0}, {1280, 800}}));
    EXPECT_EQ(fineBelow.frame(), (NSRect{{0, 0}, {1280, 800}}));
    EXPECT_EQ(none.frame(), NSRect());
}

} // namespace
