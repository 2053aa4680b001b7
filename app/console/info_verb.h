// "info": what a drawing file holds.
#pragma once

#include "app/console/documents.h"

#include <QJsonObject>

namespace console
{

/// Prints one drawing after the other: version, format, code page, counts by kind, layers, layouts, extents
/// of the current space, classes, and what opening had to mend. As JSON one object a line.
int printInfo(const QStringList &files, bool json);

} // namespace console
