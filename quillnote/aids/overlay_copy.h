// Overlays: drawings that lie under another one in one colour. What is attached is a copy in the folder for
// temporary files, painted and with its attribute definitions as texts; the drawing that was chosen is only
// read.
#pragma once

#include "host/acdb/dbid.h"
#include "host/acge/gepoint.h"
#include "host/base/result.h"

#include <QString>

#include <vector>

class AcDbDatabase;
class AcDbEntity;

/// How the names of the copies begin, and of the blocks that show them.
inline constexpr QStringView kOverlayPrefix = u"叠图_";

struct OverlayCopy {
    QString file;
    AcGePoint3d base; ///< INSBASE: put there, the overlay lies where the drawing was.
};

enum class OverlayTrouble { stopped, unreadable, notSaved };

/// Makes the copy of a drawing under a new name, as DWG when that can be written, else as DXF. Texts that do
/// not fit in are said.
base::Result<OverlayCopy, OverlayTrouble> makeOverlayCopy(const QString &source, int colorIndex);

/// An overlay of a drawing: what its block says of it.
struct Overlay {
    AcDbObjectId block; ///< Block record.
    QString name;
    QString file;   ///< The copy.
    QString source; ///< The drawing that it is a copy of; empty when nobody knows.
    int colorIndex = 0;
};
std::vector<Overlay> overlaysOf(const AcDbDatabase &database);
/// A reference to the block of an overlay.
bool showsOverlay(const AcDbEntity &entity);
/// Keeps with the block what the copy came from.
void rememberOverlaySource(AcDbObjectId block, const QString &source, int colorIndex);

/// Copies that the drawing shows are not cleaned away as long as its file is there.
void keepOverlaysFor(const AcDbDatabase &database, const QString &drawing);
/// Removes copies that no open drawing and no drawing that was saved with them uses, one day after they were
/// made: until then another program may have one in a drawing that has no name yet.
void removeUnusedOverlays();
