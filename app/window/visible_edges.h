// Edges of fields, buttons and boxes on dark and black desktops: styles make them from a darker shade of the
// window's colour, and nothing is darker than black.
#pragma once

#include <QProxyStyle>

namespace window
{

/// The desktop's own style, with edges that can be seen.
class VisibleEdges : public QProxyStyle
{
public:
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
};

} // namespace window
