#include "platform/linux/desktop/DarkPalette.h"

QPalette darkPalette()
{
    constexpr QColor words(0xee, 0xee, 0xee);
    constexpr QColor faded(0x8c, 0x90, 0x96);
    constexpr QColor ground(0x2d, 0x2f, 0x33);
    constexpr QColor paper(0x23, 0x25, 0x28);
    constexpr QColor button(0x3b, 0x3e, 0x43);
    QPalette palette(words, button, button.lighter(140), QColor(0x18, 0x19, 0x1b), QColor(0x26, 0x28, 0x2b), words,
                     Qt::white, paper, ground);
    palette.setColor(QPalette::AlternateBase, ground);
    palette.setColor(QPalette::Shadow, Qt::black);
    palette.setColor(QPalette::Highlight, QColor(0x2a, 0x76, 0xc6));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(0x6c, 0xb4, 0xf5));
    palette.setColor(QPalette::LinkVisited, QColor(0xb3, 0x9d, 0xf0));
    palette.setColor(QPalette::ToolTipBase, paper);
    palette.setColor(QPalette::ToolTipText, words);
    palette.setColor(QPalette::PlaceholderText, faded);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, faded);
    }
    palette.setColor(QPalette::Disabled, QPalette::Highlight, button);
    palette.setColor(QPalette::Disabled, QPalette::HighlightedText, faded);
    return palette;
}
