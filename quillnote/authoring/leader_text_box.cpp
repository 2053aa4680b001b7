#include "quillnote/authoring/leader_text_box.h"

#include "host/acgi/text/text_style.h"

static constexpr int kLineLength = 40;

LeaderTextBox leaderTextBox(const AcGePoint3d &start, const AcGePoint3d &end, double textHeight, int lines,
                            double width, const AcGeMatrix3d &worldToView)
{
    const AcGePoint3d from = worldToView * start;
    const AcGePoint3d to = worldToView * end;
    const double margin = 2.0 * textHeight;
    const bool isToTheRight = to.x >= from.x;
    const AcGePoint3d lowerLeft(isToTheRight ? to.x : to.x - margin - width, to.y - margin, 0);
    const AcGePoint3d upperRight(isToTheRight ? to.x + margin + width : to.x, to.y + textHeight * (lines + 2),
                                 0);
    const AcGeMatrix3d viewToWorld = worldToView.inverse();
    return {viewToWorld * lowerLeft, viewToWorld * upperRight};
}

int leaderTextLines(const QString &text)
{
    return int(text.size() / kLineLength) + 1;
}

double leaderTextWidth(const QString &text, double textHeight)
{
    AcGiTextStyle style;
    style.setFileName(QStringLiteral("complex.shx"));
    style.setBigFontFileName(QStringLiteral("gbcbig.shx"));
    style.setTextSize(textHeight);
    style.loadStyleRec();
    return style.extents(text.left(kLineLength)).x;
}
