// Where "-o OUT" puts the result of each file.
#pragma once

#include "host/base/result.h"

#include <QString>
#include <QStringList>

namespace console
{

enum class Overwrite { no, yes };

/// One path a file, in their order; all empty when `output` is.
///
/// With one file `output` is a file, or a folder that exists or ends in a slash; with several it is a folder.
/// Files keep their names inside a folder. The error says what stands in the way: two files of one name, a
/// target that exists and may not be overwritten or is no plain file, a folder that is none. Makes nothing.
base::Result<QStringList, QString> planOutputs(const QStringList &files, const QString &output,
                                               Overwrite overwrite);

/// The same for a verb that makes one file of one drawing: `output` must be a file's path.
base::Result<void, QString> planOneOutput(const QStringList &files, const QString &output,
                                          Overwrite overwrite);

/// The same for one file of any number of drawings.
base::Result<void, QString> planSharedOutput(const QString &output, Overwrite overwrite);

/// Looks at one target again, right before it is written, and makes its folder.
base::Result<void, QString> prepareOutput(const QString &target, Overwrite overwrite);

} // namespace console
