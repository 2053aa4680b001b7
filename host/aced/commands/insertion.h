// What commands that place blocks share: where the file is, where and how large the block comes.
#pragma once

#include "host/acdb/dbid.h"
#include "host/acge/gepoint.h"

#include <QString>

#include <optional>

namespace hostcommands
{

struct Placement {
    AcGePoint3d point; ///< UCS.
    double x = 1.0;
    double y = 1.0;
    double z = 1.0;
    double rotation = 0.0; ///< From the X axis of the UCS.
};

/// False for what no block may be called.
bool isBlockName(const QString &name);
/// The file of a name that may lack its ending and its folder; empty when there is none.
QString drawingFile(const QString &name);
/// What a length of the block is in the drawing. Drawings and blocks without units take those that are set
/// for such; where nothing says anything it is 1.
double unitFactor(AcDbObjectId block);
/// Asks for the point, the scales (one for all when `uniform`) and the rotation; none when cancelled.
std::optional<Placement> askPlacement(bool uniform);
/// Makes the block reference in the current space, with the attributes that the user is asked for.
void insertReference(AcDbObjectId block, const Placement &placement, double units);
/// The command XCLIP.
void xclip();

} // namespace hostcommands
