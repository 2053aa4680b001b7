// The text of a mark, broken into lines: under the target of a flag mark, in the text box of a leader mark.
#pragma once

#include "host/acge/gepoint.h"
#include "host/acgi/text/text_style.h"

#include <QString>

#include <optional>
#include <vector>

class QuillnoteObj3;
struct MarkDrawingSettings;

/// The directions that a mark is drawn along: to its right and upwards, both of length 1.
struct MarkAxes {
    AcGeVector3d right = AcGeVector3d::kXAxis;
    AcGeVector3d up = AcGeVector3d::kYAxis;
    AcGeVector3d normal = AcGeVector3d::kZAxis;
};
/// Directions that a record lacks are those of the world.
MarkAxes markAxes(const AcGeVector3d &normal, const AcGeVector3d &xDirection);
MarkAxes markAxes(const QuillnoteObj3 &mark);

/// Where text stands: a flag mark's target or a leader mark's text box.
struct MarkTextFrame {
    AcGePoint3d corner1;
    AcGePoint3d corner2;
    AcGePoint3d corner3;
    double width = 0.0; ///< Along the mark's axes.
    double height = 0.0;
};
MarkTextFrame markTextFrame(const AcGePoint3d &corner1, const AcGePoint3d &corner2,
                            const AcGePoint3d &corner3, const MarkAxes &axes);

struct MarkTextLine {
    QString text; ///< As typed, without control codes.
    AcGePoint3d base;
    double size = 0.0;
    double xScale = 1.0;
};

/// Reviewer and date, under a thin rule.
struct MarkSignature {
    MarkTextLine line;
    AcGePoint3d ruleStart;
    AcGePoint3d ruleEnd;
};

struct MarkTextLayout {
    AcGiTextStyle style; ///< The font; sizes and scales stand in the lines.
    std::vector<MarkTextLine> lines;
    std::optional<MarkSignature> signature;
    double widest = 0.0;  ///< The widest line, as measured before it was fitted.
    AcGePoint3d endPoint; ///< Where a further line would begin.
    double depth = 0.0;   ///< From the first base line down to where a box around the text ends.
};

/// Height that the text of the mark has; always above 0.
double markTextHeight(const QuillnoteObj3 &mark, const MarkDrawingSettings &settings, bool paperSpace,
                      double frameWidth);
/// Of a text box: from its upper edge down to the first base line, in text heights.
inline constexpr double kFirstBaseLine = 1.33;
/// Base point of the first line.
AcGePoint3d markTextStart(bool leaderMark, const MarkTextFrame &frame, const MarkAxes &axes, double height);

/// The installed font that mark text is in, TrueType or shape font.
const AcGiTextStyle &markTextStyle(bool trueType);
/// Size of that font for text of a height.
double markTextSize(bool trueType, double height);

/// Breaks the opinion into lines that start at `start`, with the signature line when it is shown. Under a
/// target lines are of equal length and fitted to the target's width; in a box they break at words and keep
/// the shape of their letters, so that a box that was fitted to its lines has the same lines again.
MarkTextLayout layOutMarkText(const QuillnoteObj3 &mark, const MarkDrawingSettings &settings,
                              const MarkTextFrame &frame, const MarkAxes &axes, const AcGePoint3d &start,
                              double height);
