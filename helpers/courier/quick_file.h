// Writing files that are made again when they are lost: what goes with the power is no loss, but nobody ever
// reads half of one.
#pragma once

#include <QByteArray>
#include <QString>

namespace courier
{

/// Makes or replaces the file by renaming; does not wait for the disk.
bool writeQuickly(const QString &path, const QByteArray &bytes);

} // namespace courier
