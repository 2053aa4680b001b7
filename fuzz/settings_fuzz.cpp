// Settings as text, which people carry from machine to machine: what is taken is written, and reads as the
// same again.
#include "host/base/assert.h"
#include "host/os/settings_store.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    os::SettingsStore store(QStringLiteral(":memory:"));
    const auto taken = os::importSettings(store, QByteArrayView(data, qsizetype(size)));
    QUILL_ASSERT(taken || store.entries().empty());
    os::SettingsStore again(QStringLiteral(":memory:"));
    const auto takenAgain = os::importSettings(again, os::exportSettings(store));
    QUILL_ASSERT(takenAgain && again.entries() == store.entries());
    return 0;
}
