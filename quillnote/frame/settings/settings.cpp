#include "quillnote/frame/settings/settings.h"

#include "host/os/settings_store.h"

namespace settings
{

static QString nameOf(Text row, int index)
{
    return row->name.toString().replace(QLatin1String("%d"), QString::number(index));
}

static QString readText(QStringView key, QStringView name)
{
    // The shared buffer of the call is good only until the next one.
    return QString::fromUtf16(os::ReadText(os::Hive::currentUser, key, name));
}

std::optional<int> stored(Number row)
{
    const auto value = static_cast<int>(os::ReadNumber(os::Hive::currentUser, row->key, row->name));
    return value >= row->range.low && value <= row->range.high ? std::optional(value) : std::nullopt;
}

int number(Number row)
{
    return stored(row).value_or(row->range.otherwise);
}

QString text(Text row)
{
    return readText(row->key, row->name);
}

QString text(Text row, int index)
{
    return readText(row->key, nameOf(row, index));
}

bool setNumber(Number row, int value)
{
    return os::WriteNumber(os::Hive::currentUser, row->key, row->name, static_cast<std::uint32_t>(value));
}

bool setText(Text row, QStringView value)
{
    return os::WriteText(os::Hive::currentUser, row->key, row->name, value);
}

bool setText(Text row, int index, QStringView value)
{
    return os::WriteText(os::Hive::currentUser, row->key, nameOf(row, index), value);
}

void declareTypes()
{
    using Store = os::SettingsStore;
    for (const Row &row : table::kRows)
        Store::user().declare({row.key.toString(), row.name.toString(),
                               row.kind == Kind::text ? Store::Type::text : Store::Type::number,
                               row.indexes.first, row.indexes.last});
}

} // namespace settings
