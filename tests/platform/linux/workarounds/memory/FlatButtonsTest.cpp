#include "platform/linux/workarounds/memory/FlatButtons.h"

#include <QImage>
#include <QPainter>
#include <QStyleOptionButton>

#include <gtest/gtest.h>

#include <initializer_list>
#include <set>

namespace
{

QPalette paletteOf(const QColor &button)
{
    QPalette palette(button);
    palette.setColor(QPalette::Highlight, Qt::blue);
    return palette;
}

QImage pictureOf(const QStyleOptionButton &option)
{
    QImage picture(option.rect.size(), QImage::Format_RGB32);
    picture.fill(option.palette.color(QPalette::Window));
    QPainter painter(&picture);
    const FlatButtons style;
    style.drawPrimitive(QStyle::PE_PanelButtonCommand, &option, &painter, nullptr);
    return picture;
}

QStyleOptionButton buttonOf(const QColor &colour, QStyle::State state = QStyle::State_Enabled)
{
    QStyleOptionButton option;
    option.rect = QRect(0, 0, 80, 24);
    option.palette = paletteOf(colour);
    option.state = state;
    return option;
}

QColor faceIn(const QImage &picture)
{
    return picture.pixelColor(picture.rect().center());
}

QColor outlineIn(const QImage &picture)
{
    return picture.pixelColor(picture.width() / 2, 0);
}

TEST(FlatButtons, HaveOneColourInside)
{
    const QImage picture = pictureOf(buttonOf(QColor(200, 210, 220)));
    std::set<QRgb> colours;
    for (int y = 4; y < picture.height() - 4; ++y) {
        colours.insert(picture.pixel(picture.width() / 2, y));
    }
    EXPECT_EQ(colours, std::set{QColor(200, 210, 220).rgb()});
}

TEST(FlatButtons, ShowWhatIsPressedAndWhatIsUnderTheMouseInLightAndInDarkColours)
{
    for (const QColor &colour : {QColor(230, 230, 230), QColor(50, 50, 50)}) {
        const QColor rest = faceIn(pictureOf(buttonOf(colour)));
        const QColor under = faceIn(pictureOf(buttonOf(colour, QStyle::State_Enabled | QStyle::State_MouseOver)));
        const QColor pressed = faceIn(pictureOf(buttonOf(colour, QStyle::State_Enabled | QStyle::State_Sunken)));
        EXPECT_NE(under, rest) << colour.name().toStdString();
        EXPECT_NE(pressed, under) << colour.name().toStdString();
        EXPECT_EQ(faceIn(pictureOf(buttonOf(colour, QStyle::State_MouseOver))), rest) << "it cannot be pressed";
    }
}

TEST(FlatButtons, StandOutFromTheWindowByTheirOutline)
{
    for (const QColor &colour : {QColor(230, 230, 230), QColor(50, 50, 50)}) {
        const QColor window = paletteOf(colour).color(QPalette::Window);
        EXPECT_GT(std::abs(outlineIn(pictureOf(buttonOf(colour))).lightness() - window.lightness()), 15);
    }
}

TEST(FlatButtons, ShowTheDefaultOneAndThatOfTheKeyboardByTheirOutline)
{
    QStyleOptionButton chosen = buttonOf(QColor(230, 230, 230));
    chosen.features = QStyleOptionButton::DefaultButton;
    EXPECT_EQ(outlineIn(pictureOf(chosen)), QColor(Qt::blue));
    EXPECT_EQ(outlineIn(pictureOf(buttonOf(QColor(230, 230, 230), QStyle::State_Enabled | QStyle::State_HasFocus |
                                                                      QStyle::State_KeyboardFocusChange))),
              QColor(Qt::blue));
}

} // namespace
