#include "app/window/visible_edges.h"

#include "app/window/readable_palette.h"

#include <QPainter>
#include <QStyleOption>

namespace window
{

static bool hasEdge(QStyle::PrimitiveElement element)
{
    switch (element) {
    case QStyle::PE_Frame:
    case QStyle::PE_FrameLineEdit:
    case QStyle::PE_FrameGroupBox:
    case QStyle::PE_PanelButtonCommand:
    case QStyle::PE_IndicatorCheckBox:
    case QStyle::PE_IndicatorItemViewItemCheck:
    case QStyle::PE_IndicatorRadioButton:
        return true;
    default:
        return false;
    }
}

void VisibleEdges::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                                 const QWidget *widget) const
{
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    constexpr int kBlack = 24; // Grey level.
    const QColor background = option->palette.color(QPalette::Window);
    // What has the focus has an edge that says so.
    if (!hasEdge(element) || option->state & State_HasFocus || qGray(background.rgb()) > kBlack)
        return;
    painter->save();
    painter->setPen(subdued(option->palette.color(QPalette::Active, QPalette::WindowText), background));
    painter->setBrush(Qt::NoBrush);
    const QRect edge = option->rect.adjusted(0, 0, -1, -1);
    if (element == PE_IndicatorRadioButton)
        painter->drawEllipse(edge);
    else
        painter->drawRect(edge);
    painter->restore();
}

} // namespace window
