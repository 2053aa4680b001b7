// Marks whose target is a polygon or a closed spline: drawn with the jig or by plain prompts, then completed
// by a text beside them or left without one.
#pragma once

#include "host/acdb/dbid.h"
#include "host/acge/gepoint.h"

#include <memory>
#include <span>

class AcDbDatabase;
class QuillnoteObj3;

/// What the settings and the view say of a new polygon mark, the reviewer's name included. It has no GUID
/// yet.
void initMarkFromSettings(QuillnoteObj3 &mark);
/// Turns the x direction about where the current coordinate system looks at the drawing from below.
void orientMark(QuillnoteObj3 &mark, const AcGeVector3d &ucsNormal);

/// Gives the mark a GUID and the snapshot of its target, and appends it. A null id, with a printed line, when
/// the drawing refuses it.
AcDbObjectId appendPolygonMark(AcDbDatabase &database, std::unique_ptr<QuillnoteObj3> mark);
/// Makes a numbered mark without text around three distinct points (world) at least; a null id otherwise.
AcDbObjectId makePolygonMark(AcDbDatabase &database, std::span<const AcGePoint3d> points,
                             const AcGeVector3d &ucsNormal);

/// Gives a polygon mark that stays without text the reviewer's name and the drawing's next number.
void finishPolygonMark(AcDbObjectId polygon);
/// Makes one mark of two: the polygon takes over text, text box and number of the leader mark, which is
/// erased. False, and both as they were, when the polygon has less than three vertices or either cannot be
/// changed.
bool mergePolygonIntoLeaderMark(AcDbObjectId polygon, AcDbObjectId leaderMark);

/// Draws an outline with the jig and lets the user place the text.
void drawMarkJig(bool isPolygon);

void QN3_PolygonMarkJig(); ///< Command: drawMarkJig() for a polygon.
void QN3_SplineMarkJig();  ///< Command: drawMarkJig() for a spline.
void QN3_PolygonMark();    ///< Command: a polygon by plain prompts, without text.
