// Pictures of the drawing view: a target area of it, the whole of it, and a target cut out of the whole.
//
// All of them show the current document as it is on the screen at this moment and name a temporary picture
// (temporary_picture.h) that the caller takes or removes.
#pragma once

#include "host/acdb/dbid.h"
#include "host/acge/gepoint.h"

#include <QRect>
#include <QString>

#include <optional>

/// The pixels of the view between two target corners (world); none when the view cannot tell them.
std::optional<QRect> targetPixels(const AcGePoint3d &corner1, const AcGePoint3d &corner2);

/// The target area at the scale of the view, made anew (target_picture.h) so that a later picture of the same
/// size can be laid over it; what lies beyond the view is there too. None when the area has no pixels, more
/// of them than a picture can hold, or there is no memory for it.
std::optional<QString> captureTargetImage(const AcGePoint3d &corner1, const AcGePoint3d &corner2);

/// The whole view, exported by the host; painted here where the temporary folder takes no file. The name is
/// empty when no picture came about.
QString captureFullView();

/// The target area out of a picture of the whole view. None when the picture cannot be read or written.
std::optional<QString> cropTargetImage(const AcGePoint3d &corner1, const AcGePoint3d &corner2,
                                       const QString &fullViewPath);

/// Stores a picture of the whole view in a mark. A mark that cannot be opened for write is told about on the
/// command line and left alone; so is a picture that did not come about.
void recordFullSnapshot(AcDbObjectId mark);
