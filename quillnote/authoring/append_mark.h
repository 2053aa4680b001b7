// What all new marks have in common, however their target was drawn: height, axes, colours and password by
// the settings and the view, the layer, and the way into the drawing.
#pragma once

#include "host/acdb/dbid.h"

#include <cstdint>
#include <memory>

class AcDbDatabase;
class QuillnoteObj3;

/// Text height (that of sheets while a sheet is current), axes along the current view, colours and password.
void fillMarkFromSettings(QuillnoteObj3 &mark);

/// Appends a settled mark to the current space. A null id when the drawing refuses it.
AcDbObjectId appendMark(AcDbDatabase &database, std::unique_ptr<QuillnoteObj3> mark);

/// Puts the mark on the mark layer when the settings ask for one, else on layer "0", settles and appends it.
/// It is the last created mark from then on.
AcDbObjectId appendNewMark(AcDbDatabase &database, std::unique_ptr<QuillnoteObj3> mark);

/// Keeps the number as the drawing's last; prints when the drawing refuses it.
void keepMarkNumber(AcDbDatabase &database, std::uint16_t number);
