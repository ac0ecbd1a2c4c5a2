#include "platform/images/IcnsReader.h"
#include "tests/session/support/DesktopSettings.h"
#include "tests/session/support/MenuOffPanel.h"
#include "tests/session/support/Service.h"
#include "tests/session/support/SessionWithMessages.h"
#include "tests/session/support/Sharpness.h"
#include "tests/support/WaitUntil.h"

#include <QFile>

#include <gtest/gtest.h>

#include <X11/keysym.h>
#include <cmath>

namespace
{

/// At scales at which a point is no whole number of pixels, and at one at which it is.
class Crispness : public SessionWithMessages, public testing::WithParamInterface<double>
{
protected:
    void SetUp() override
    {
        panelThickness = pixels(itemInPoints) + paddingOfPanel;
        ASSERT_NO_FATAL_FAILURE(SessionWithMessages::SetUp());
        settings.emplace(desktop.server());
        setScale(GetParam());
    }
    void setScale(double scale) { settings->setDotsPerInch(qRound(96 * scale)); }

    [[nodiscard]] static int pixels(double points) { return qRound(points * GetParam()); }

    /// What is seen of the one free window, once it has that size in points.
    [[nodiscard]] QImage pictureOf(QSizeF points, double scale)
    {
        const bool hasSize = waitUntil([&] {
            const QList<XWindow> windows = agent->freeWindows();
            return windows.size() == 1 && isNear(windows.first().geometry.size(), points * scale) &&
                   agent->isDrawn(windows.first());
        });
        EXPECT_TRUE(hasSize) << agent->freeWindows().value(0).geometry.width() << " x "
                             << agent->freeWindows().value(0).geometry.height();
        return hasSize ? settledPicture(agent->freeWindows().value(0)) : QImage();
    }
    /// Lines of text are as high as whole points allow.
    [[nodiscard]] static bool isNear(QSize size, QSizeF wanted)
    {
        constexpr double near = 2;
        return std::abs(size.width() - wanted.width()) <= near && std::abs(size.height() - wanted.height()) <= near;
    }

    static void expectCrisp(const char *what, const QImage &picture, const QImage &usual)
    {
        if (const QString folder = qEnvironmentVariable("KIV_PICTURES"); !folder.isEmpty()) {
            picture.save(QStringLiteral("%1/%2-%3.png").arg(folder, QString::fromLatin1(what)).arg(GetParam()));
        }
        const double scale = GetParam();
        ASSERT_FALSE(picture.isNull() || usual.isNull()) << what;
        for (const Qt::TransformationMode mode : {Qt::FastTransformation, Qt::SmoothTransformation}) {
            const QImage stretched = usual.scaled(picture.size(), Qt::IgnoreAspectRatio, mode);
            EXPECT_FALSE(Sharpness::isDrawnInPixels(stretched, usual, scale)) << what << " has nothing to tell by";
        }
        EXPECT_TRUE(Sharpness::isDrawnInPixels(picture, usual, scale))
            << what << ": " << Sharpness::steepness(picture) << " of " << Sharpness::steepness(usual) << ", "
            << Sharpness::lossInPoints(picture, scale);
    }
    /// A part of a window.
    [[nodiscard]] static QImage cut(const QImage &picture, const QRect &points, double scale)
    {
        return picture.copy(QRect(points.topLeft() * scale, points.size() * scale));
    }

    /// Nothing of the pop-up's icon is as steep as a letter.
    [[nodiscard]] static QImage iconOfUpdates(double scale)
    {
        QFile file(QStringLiteral(KIV_ICON_OF_UPDATES));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        const int side = static_cast<int>(std::ceil(50 * scale));
        return readIcns(file.readAll(), side).scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    }

    static constexpr int itemInPoints = 22;
    static constexpr int paddingOfPanel = 12; ///< Above and below the item together.
    std::optional<DesktopSettings> settings;
};

TEST_P(Crispness, IsThatOfTheItemAndOfAPopUpWithItsIcon)
{
    ASSERT_TRUE(start({{{.id = "1", .type = "update", .text = "<p>Read <b>this</b> and more</p>"}}}));
    const std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    const QSizeF points = QSizeF(window->geometry.size()) / GetParam();
    const QImage picture = pictureOf(points, GetParam());
    const QRect place = agent->freeWindows().value(0).geometry;
    EXPECT_NEAR(place.right(), 1279 - pixels(10), 1);
    EXPECT_NEAR(place.top(), std::max(pixels(30), panelThickness), 1);
    const QImage item = agent->itemPicture();
    EXPECT_EQ(item.size(), QSize(pixels(itemInPoints), pixels(itemInPoints)));

    setScale(1);
    const QImage usual = pictureOf(points, 1);
    expectCrisp("pop-up", picture, usual);
    const QImage icon = cut(picture, QRect(9, 9, 54, 54), GetParam());
    EXPECT_LT(3 * Sharpness::differenceTo(iconOfUpdates(GetParam()), icon),
              Sharpness::differenceTo(iconOfUpdates(1).scaled(iconOfUpdates(GetParam()).size()), icon));
    setScale(GetParam());
    EXPECT_TRUE(waitUntil([&] { return pictureOf(points, GetParam()) == picture; }))
        << "it was there when the scale changed";

    desktop.stopPanel();
    ASSERT_TRUE(
        desktop.startPanel(Desktop::TraySide::Right, Desktop::PanelEdge::Top, 0, itemInPoints + paddingOfPanel));
    ASSERT_TRUE(waitUntil([&] { return agent->isDocked(); }));
    ASSERT_EQ(agent->itemPicture().width(), itemInPoints);
    expectCrisp("item", item, agent->itemPicture());
}

TEST_P(Crispness, IsThatOfTheMenuAndOfAnAlertWithItsSign)
{
    ASSERT_TRUE(start({}));
    ASSERT_TRUE(waitUntil([&] { return agent->isLinked(); }));
    const auto pictureOfMenu = [&](QSizeF points, double scale) {
        const QImage picture = agent->openMenu() ? pictureOf(points, scale) : QImage();
        desktop.input().key(XK_Escape);
        EXPECT_TRUE(agent->waitUntilClosed());
        return picture;
    };
    const std::optional<XWindow> menu = agent->openMenu();
    ASSERT_TRUE(menu);
    const int gap = menu->geometry.top() - panelThickness;
    EXPECT_NEAR(gap, pixels(gapBelowThePanel), 1 + GetParam());
    const QSizeF pointsOfMenu = QSizeF(menu->geometry.size()) / GetParam();
    desktop.input().key(XK_Escape);
    ASSERT_TRUE(agent->waitUntilClosed());
    const QImage picture = pictureOfMenu(pointsOfMenu, GetParam());
    setScale(1);
    // Nobody tells when the agent has heard of it.
    ASSERT_TRUE(waitUntil([&] {
        const std::optional<XWindow> next = agent->openMenu();
        desktop.input().key(XK_Escape);
        return agent->waitUntilClosed() && next && isNear(next->geometry.size(), pointsOfMenu);
    }));
    expectCrisp("menu", picture, pictureOfMenu(pointsOfMenu, 1));

    ASSERT_TRUE(agent->openMenu());
    desktop.input().key(XK_Up);
    desktop.input().key(XK_Return);
    const auto alertIsUp = [&] {
        const QList<XWindow> windows = agent->freeWindows();
        return windows.size() == 1 && !windows.first().overrideRedirect &&
               desktop.view().focusOwnerPid() == agent->pid();
    };
    ASSERT_TRUE(waitUntil(alertIsUp));
    const QSizeF pointsOfAlert = agent->freeWindows().value(0).geometry.size();
    const QImage usual = pictureOf(pointsOfAlert, 1);
    setScale(GetParam());
    const QImage alert = pictureOf(pointsOfAlert, GetParam());
    EXPECT_TRUE(waitUntil(alertIsUp));
    EXPECT_TRUE(QRect(QPoint(), desktop.view().screenSize()).contains(agent->freeWindows().value(0).geometry));
    expectCrisp("alert", alert, usual);
    const QRect sign(20, 20, 48, 48);
    expectCrisp("sign", cut(alert, sign, GetParam()), cut(usual, sign, 1));
    desktop.input().key(XK_Escape);
    EXPECT_TRUE(agent->waitUntilClosed());
}

INSTANTIATE_TEST_SUITE_P(AtScale, Crispness, testing::Values(1.25, 1.5, 2));

} // namespace
