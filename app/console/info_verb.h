// "info": what a drawing file holds.
#pragma once

#include "app/console/documents.h"

#include <QJsonObject>

namespace console
{

/// Version, format, code page, counts of entities and other objects by kind, layers, layouts, extents of the
/// current space, classes, and what opening had to mend.
QJsonObject drawingInfo(const AcApDocument &document);
/// The same for people; ends with a line end.
QString drawingInfoText(const QJsonObject &info);

/// Prints one drawing after the other; as JSON one object a line.
int printInfo(const QStringList &files, bool json);

} // namespace console
