// What all new marks have in common, however their target was drawn: height, axes, colours and password by
// the settings and the view, the layer, and the way into the drawing.
#pragma once

#include "host/acdb/dbid.h"
#include "host/acge/gepoint.h"

#include <cstdint>
#include <memory>

class AcDbDatabase;
class AcDbExtents;
class QuillnoteObj3;

/// What the user sees as "to the right" in the current view, in the world.
AcGeVector3d viewRight();
/// Text height (that of sheets while a sheet is current), axes along the current view, colours and password.
void fillMarkFromSettings(QuillnoteObj3 &mark);

/// A text height (world units, two digits) for a view and for the box around what the drawing shows, which
/// may be invalid: about a fiftieth of the view, within what can be read on the whole drawing.
double suitingTextHeight(double viewHeight, const AcDbExtents &drawing);
/// Text under a small target would follow it into what nobody can read in the current view: such a mark gets
/// a height of its own instead.
void keepTextLegible(QuillnoteObj3 &mark);

/// Appends a settled mark to a block record, the current space when it is null. A null id when the drawing
/// refuses it.
AcDbObjectId appendMark(AcDbDatabase &database, std::unique_ptr<QuillnoteObj3> mark, AcDbObjectId space = {});

/// Puts the mark on the mark layer when the settings ask for one, else on layer "0", settles and appends it.
/// It is the last created mark from then on.
AcDbObjectId appendNewMark(AcDbDatabase &database, std::unique_ptr<QuillnoteObj3> mark);

/// Keeps the number as the drawing's last; prints when the drawing refuses it.
void keepMarkNumber(AcDbDatabase &database, std::uint16_t number);
