#include "host/acdb/kinds/entitykind.h"

#include "host/acdb/dbdatabase.h"

#include <algorithm>
#include <iterator>
#include <vector>

std::span<const EntityKind> acdbEntityKinds()
{
    static const std::vector<EntityKind> all = [] {
        std::vector<EntityKind> table;
        for (const auto family :
             {entitykinds::lines, entitykinds::curves, entitykinds::polylines, entitykinds::texts,
              entitykinds::areas, entitykinds::placed, entitykinds::notes, entitykinds::others}) {
            std::vector<EntityKind> members = family();
            table.insert(table.end(), std::move_iterator(members.begin()), std::move_iterator(members.end()));
        }
        return table;
    }();
    return all;
}

/// Indexed by kind number: many entities ask. Numbers the kinds.
static const std::vector<const EntityKind *> &kindsByNumber()
{
    static const std::vector<const EntityKind *> byNumber = [] {
        std::vector<const EntityKind *> table;
        for (const EntityKind &each : acdbEntityKinds()) {
            const AcDbKind number = acdbKind(each.dxfName);
            table.resize(std::max(table.size(), std::size_t(number) + 1));
            table[number] = &each;
        }
        return table;
    }();
    return byNumber;
}

const EntityKind *acdbEntityKind(AcDbKind kind)
{
    const std::vector<const EntityKind *> &byNumber = kindsByNumber();
    return kind < byNumber.size() ? byNumber[kind] : nullptr;
}

const EntityKind *acdbEntityKind(const QByteArray &dxfName)
{
    kindsByNumber(); // Names have numbers from here on.
    return acdbEntityKind(acdbKnownKind(dxfName));
}
