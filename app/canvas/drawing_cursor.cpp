#include "app/canvas/drawing_cursor.h"

#include "host/aced/edsysvar.h"

#include <QPainter>
#include <QPixmap>

#include <algorithm>
#include <cmath>

namespace window
{

static constexpr int kHalf = 24; ///< Half the size of the cross-hairs.

static void drawCross(QPainter &painter, int gap)
{
    painter.drawLine(-kHalf, 0, -gap - 1, 0);
    painter.drawLine(gap + 1, 0, kHalf, 0);
    painter.drawLine(0, -kHalf, 0, -gap - 1);
    painter.drawLine(0, gap + 1, 0, kHalf);
}

QCursor drawingCursor(AcEdPromptKind kind, bool isDark)
{
    const bool picks = kind == AcEdPromptKind::entity || kind == AcEdPromptKind::selection;
    const bool points = kind == AcEdPromptKind::point || kind == AcEdPromptKind::corner ||
                        kind == AcEdPromptKind::distance || kind == AcEdPromptKind::angle;
    const bool isIdle = kind == AcEdPromptKind::command;
    if (!picks && !points && !isIdle)
        return Qt::ArrowCursor;
    QPixmap pixmap(2 * kHalf + 1, 2 * kHalf + 1);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.translate(kHalf, kHalf);
    painter.setPen(isDark ? Qt::black : Qt::white);
    const int box = std::clamp(acedIntVar(QStringLiteral("PICKBOX"), 3), 2, kHalf - 2);
    if (!picks)
        drawCross(painter, isIdle ? box : 0);
    if (points)
        painter.drawPoint(0, 0);
    else
        painter.drawRect(-box, -box, 2 * box, 2 * box);
    painter.end();
    return QCursor(pixmap, kHalf, kHalf);
}

} // namespace window
