#include "quillnote/frame/settings/settings.h"

#include "host/os/settings_store.h"

namespace settings
{

int number(QStringView name, QStringView key)
{
    return static_cast<int>(os::ReadNumber(os::Hive::currentUser, key, name));
}

int numberInRange(QStringView name, int low, int high, int otherwise)
{
    const int value = number(name);
    return value >= low && value <= high ? value : otherwise;
}

QString text(QStringView name, QStringView key)
{
    // The shared buffer of the call is good only until the next one.
    return QString::fromUtf16(os::ReadText(os::Hive::currentUser, key, name));
}

bool setNumber(QStringView name, int value, QStringView key)
{
    return os::WriteNumber(os::Hive::currentUser, key, name, static_cast<std::uint32_t>(value));
}

bool setText(QStringView name, QStringView value, QStringView key)
{
    return os::WriteText(os::Hive::currentUser, key, name, value);
}

void declareTypes()
{
    using Store = os::SettingsStore;
    for (const Value &value : table())
        Store::user().declare({value.key.toString(), value.name.toString(),
                               value.kind == Kind::text ? Store::Type::text : Store::Type::number,
                               value.first, value.last});
}

} // namespace settings
