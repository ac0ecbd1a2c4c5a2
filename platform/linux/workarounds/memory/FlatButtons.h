#pragma once

#include <QProxyStyle>

/// Qt's own style, but with buttons of one colour each. Main thread only; the application owns the one in use.
///
/// Symptom: for each gradient that was ever painted Qt keeps a table of 9 kB, up to sixty of them, and its style paints
///   every state of a button with another.
/// Of: Qt 6.4 to 6.11, QFusionStyle and the raster paint engine, by their design. No report found.
/// Left out: 40 kB a session after the first alert and pop-up, and more with each colour scheme.
/// Still needed? WorkaroundMemory.FlatButtons tells.
class FlatButtons final : public QProxyStyle
{
    Q_OBJECT

public:
    /// Makes this the application's style.
    static void use();

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
};
