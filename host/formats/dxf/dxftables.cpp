#include "host/formats/dxf/dxftables.h"

#include <algorithm>

namespace dxf
{

/// In the order of the enumeration.
static constexpr std::string_view kNames[kSymbolTableCount] = {
    "VPORT", "LTYPE", "LAYER", "STYLE", "VIEW", "UCS", "APPID", "DIMSTYLE", "BLOCK_RECORD"};

QByteArrayView tableName(SymbolTable table)
{
    const std::string_view name = kNames[std::size_t(table)];
    return {name.data(), qsizetype(name.size())};
}

std::optional<SymbolTable> tableByName(std::string_view name)
{
    const auto *const found = std::ranges::find(kNames, name);
    if (found == std::end(kNames))
        return {};
    return SymbolTable(found - std::begin(kNames));
}

std::optional<SymbolTable> tableOfRecord(const AcDbStub &stub)
{
    if (stub.has(AcDbStub::kEntity))
        return {};
    const QByteArray &kind = acdbKindName(stub.kind);
    return tableByName({kind.data(), std::size_t(kind.size())});
}

} // namespace dxf
