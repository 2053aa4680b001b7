// Bringing one drawing into another as a block.
#pragma once

#include "host/acdb/dbid.h"

#include <QString>

struct AcDbInsertedDrawing {
    AcDbObjectId block;       ///< The block record; null when the drawing can have none, or refuses this one.
    bool holdsItself = false; ///< Why: the block would be inside itself.
    /// Entities of `from` that stayed out: of classes that the drawing does not have.
    std::size_t leftOut = 0;
};

/// Makes the block `name` of `target` out of the model space of `from`, another drawing: base point $INSBASE,
/// units $INSUNITS, with the layers, linetypes, styles and blocks that its entities use. What the target has
/// under the same name stays as it is and is used instead; only the block `name` itself is given the new
/// contents. `from` is not changed and may go afterwards. External references of `from` stay such.
AcDbInsertedDrawing acdbInsertDrawing(AcDbDatabase &target, const QString &name, const AcDbDatabase &from);
/// The same with a prefix in front of all names that are brought along, but for those that every drawing has.
/// What `from` refers to becomes blocks as well, as far as it is loaded.
AcDbInsertedDrawing acdbBindDrawing(AcDbDatabase &target, const QString &name, const AcDbDatabase &from,
                                    const QString &prefix);
