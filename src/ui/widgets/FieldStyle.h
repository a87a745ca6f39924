// Qt's own style with edges of fields that can be seen: it makes them a little darker than the window, which
// nobody can tell from a dark one. The measure is that of the Web Content Accessibility Guidelines for
// controls: https://www.w3.org/TR/WCAG22/#non-text-contrast.
#pragma once

#include <QProxyStyle>

class FieldStyle : public QProxyStyle
{
    Q_OBJECT

public:
    // Takes the place of Qt's own style in the whole application; a desktop that brings one keeps it.
    static void install();
    static bool isInstalled();

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                            const QWidget *widget) const override;

private:
    FieldStyle();
};
