// The four calls of the review module. They swallow every failure: their callers have defaults.
#include "host/os/settings_store.h"

#include "host/base/assert.h"

#include <algorithm>
#include <array>

namespace os
{

static SettingsStore &storeOf(Hive hive)
{
    QUILL_ASSERT(hive == Hive::currentUser);
    return SettingsStore::user();
}

std::uint32_t ReadNumber(Hive hive, QStringView key, QStringView name)
{
    return storeOf(hive).number(key, name).value_or(0);
}

const char16_t *ReadText(Hive hive, QStringView key, QStringView name)
{
    static std::array<char16_t, 4096> buffer;
    const QString text = storeOf(hive).text(key, name).value_or(QString());
    const auto units = static_cast<std::size_t>(text.size());
    buffer[0] = 0;
    if (units < buffer.size()) {
        std::copy_n(QStringView(text).utf16(), units, buffer.data());
        buffer[units] = 0;
    }
    return buffer.data();
}

bool WriteNumber(Hive hive, QStringView key, QStringView name, std::uint32_t number)
{
    return storeOf(hive).setNumber(key, name, number);
}

bool WriteText(Hive hive, QStringView key, QStringView name, QStringView text)
{
    return storeOf(hive).setText(key, name, text);
}

} // namespace os
