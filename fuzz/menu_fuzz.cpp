// Menu files.
#include "host/aced/edmenu.h"

#include <cstdlib>

/// A refusal names the file; what is accepted has a name to load it by.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString name = QStringLiteral("fuzzed.mnu");
    const auto group =
        acedReadMenuFile(QByteArray(reinterpret_cast<const char *>(data), qsizetype(size)), name);
    if (group ? group->name.isEmpty() : !group.error().startsWith(name))
        std::abort();
    return 0;
}
