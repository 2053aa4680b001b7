// The drawing that a benchmark is told to measure.
#pragma once

#include "host/acap/docman.h"

#include <cstdio>

namespace bench
{

/// Null, and told on standard error, when the file cannot be opened.
inline AcApDocument *opened(const QString &path)
{
    const auto document = acDocManager()->openDocument(path);
    if (!document)
        std::fprintf(stderr, "%s\n", qPrintable(document.error()));
    return document ? *document : nullptr;
}

} // namespace bench
