#include "host/formats/dxf/dxfkinds.h"

#include "host/formats/dxf/dxfscan.h"

#include <algorithm>

namespace dxf
{

static Role roleOf(std::string_view name)
{
    struct Row {
        std::string_view name;
        Role role;
    };
    static constexpr Row kRows[] = {
        {"SECTION", Role::section},
        {"ENDSEC", Role::endSection},
        {"TABLE", Role::table},
        {"ENDTAB", Role::endTable},
        {"BLOCK", Role::block},
        {"ENDBLK", Role::endBlock},
        {"EOF", Role::eof},
        {"CLASS", Role::classRecord},
        {"DICTIONARY", Role::dictionary},
        {"DIMSTYLE", Role::dimensionStyle},
        {"INSERT", Role::mainEntity},
        {"POLYLINE", Role::mainEntity},
        {"VERTEX", Role::subEntity},
        {"ATTRIB", Role::subEntity},
        {"SEQEND", Role::sequenceEnd},
    };
    const auto *const row = std::ranges::find(kRows, name, &Row::name);
    if (row != std::end(kRows))
        return row->role;
    return isPlausibleKind(name) ? Role::ordinary : Role::garbage;
}

Kind KindCache::resolve(Entry &entry, std::string_view name)
{
    const std::string_view plain = trimmed(name);
    Kind kind{0, roleOf(plain)};
    if (kind.role != Role::garbage) {
        const QByteArray known(plain.data(), qsizetype(plain.size()));
        kind.number = m_drawing ? m_drawing->kindNamed(known) : acdbKnownKind(known);
    }
    if (name.size() <= sizeof entry.name) {
        entry.length = name.size();
        std::memcpy(entry.name, name.data(), name.size());
        entry.kind = kind;
    }
    return kind;
}

} // namespace dxf
