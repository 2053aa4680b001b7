// Selection: entities by window, crossing, pick, filter; over the drawing's spatial index.
#pragma once

#include "host/acdb/resbuf.h"
#include "host/aced/edinput.h"

#include <vector>

class AcApDocument;
class AcGiWindow;

using AcEdSelectionSet = std::vector<AcDbObjectId>;

/// Selects in the current space of the current drawing. Erased, frozen, off and hidden entities never
/// count; locked ones do. Modes:
///   "X" everything in the drawing that passes the filter (all spaces), newest first
///   "A" the same in the current space
///   "W", "C" inside, or inside and crossing, the rectangle p1 p2 (UCS, upright in the view)
///   "L" the last entity, "P" the previous selection, "I" the pick set
///   ":S" one selection action by the user, "" asks until Enter (window, crossing, "All", "Last", picks,
///   "Remove", "Add"; pick set first when there is one)
/// The filter is a list of groups that an entity's data must hold; text values take wildcards; -4 groups
/// hold operators: "<and" "and>" "<or" "or>" "<xor" "xor>" "<not" "not>" and the relations
/// "=" "!=" "/=" "<" "<=" ">" ">=" "&" "&=" "*" (per coordinate with commas: ">,>,*").
/// RTNORM; RTERROR when nothing was selected or the filter is malformed (printed); RTCAN.
int acedSSGet(const QString &mode, const AcGePoint3d *point1, const AcGePoint3d *point2,
              const ResbufList &filter, AcEdSelectionSet &selected);
/// As acedSSGet("") with the prompt texts for adding and removing.
int acedSSGetPrompt(const QString &mode, const QString &addPrompt, const ResbufList &filter,
                    AcEdSelectionSet &selected);

/// What lies inside a window (world) of the current space or crosses it, and passes; newest first. Does not
/// ask how the document is seen.
AcEdSelectionSet acedCrossingWindow(const AcApDocument &document, const AcGiWindow &window,
                                    const ResbufList &filter);

/// True when the entity's data passes the filter; for lists from elsewhere than the drawing.
bool acedPassesFilter(AcDbObjectId entity, const ResbufList &filter);
