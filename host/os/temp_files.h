// Fresh names for temporary files.
#pragma once

#include "host/base/file_error.h"
#include "host/base/result.h"

#include <QString>

namespace os
{

/// Creates an empty file in the user's temporary folder (TMPDIR) and returns its path. Its name is the
/// prefix, hexadecimal digits and ".TMP" ("QNS3F2A91C0.TMP"). The file reserves the name, also for
/// names made from it such as "....TMP.PNG"; the caller removes it.
base::Result<QString, base::FileError> temporaryFileName(const QString &prefix);

} // namespace os
