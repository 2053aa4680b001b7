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
    constexpr int kBlack = 24; // Grey levels.
    constexpr int kDark = 64;
    const QColor background = option->palette.color(QPalette::Window);
    const int gray = qGray(background.rgb());
    // On a dark desktop buttons are lighter than what is around them. What has the focus has an edge that
    // says so.
    const bool isSeen = gray > kDark || (gray > kBlack && element == PE_PanelButtonCommand);
    if (!hasEdge(element) || option->state & State_HasFocus || isSeen)
        return;
    painter->save();
    QColor edge = subdued(option->palette.color(QPalette::Active, QPalette::WindowText), background);
    if (gray > kBlack)
        edge = subdued(edge, background);
    painter->setPen(edge);
    painter->setBrush(Qt::NoBrush);
    const QRect place = option->rect.adjusted(0, 0, -1, -1);
    if (element == PE_IndicatorRadioButton)
        painter->drawEllipse(place);
    else
        painter->drawRect(place);
    painter->restore();
}

} // namespace window
