// The symbol tables by the names that DXF files give them and their records.
#pragma once

#include "host/acdb/dbdatabase.h"

#include <optional>
#include <string_view>

namespace dxf
{

/// "LAYER"; the kind of the table's records and the name in group 2 of its head are the same word.
QByteArrayView tableName(SymbolTable table);
std::optional<SymbolTable> tableByName(std::string_view name);
/// The table that an object is a record of, by its kind; none for entities and all other objects.
std::optional<SymbolTable> tableOfRecord(const AcDbStub &stub);

} // namespace dxf
