// Kind names of group 0 to numbers and to the part they play in a file, by one cheap look-up.
#pragma once

#include "host/acdb/dbdatabase.h"

#include <array>
#include <cstring>
#include <string_view>

namespace dxf
{

enum class Role : std::uint8_t {
    ordinary,
    garbage, ///< Not what a kind looks like.
    section,
    endSection,
    table,
    endTable,
    block,
    endBlock,
    eof,
    classRecord,
    dictionary,
    dimensionStyle,
    mainEntity, ///< INSERT, POLYLINE: sub-entities may follow.
    subEntity,  ///< VERTEX, ATTRIB
    sequenceEnd,
};

struct Kind {
    AcDbKind number = 0;
    Role role = Role::garbage;
};

class KindCache
{
public:
    /// New names become kinds of `drawing`; without one they have no number.
    explicit KindCache(AcDbDatabase *drawing = nullptr) : m_drawing(drawing) {}
    /// `name` as the value of a group 0, blanks around it allowed.
    Kind find(std::string_view name)
    {
        std::uint64_t head = 0;
        std::memcpy(&head, name.data(), name.size() < sizeof head ? name.size() : sizeof head);
        const std::uint64_t mixed = (head ^ name.size()) * 0x9E3779B97F4A7C15u;
        Entry &entry = m_entries[mixed >> 56];
        if (entry.length != name.size() || std::memcmp(entry.name, name.data(), name.size()) != 0)
            return resolve(entry, name);
        return entry.kind;
    }

private:
    struct Entry {
        std::size_t length = 0;
        char name[40];
        Kind kind;
    };
    Kind resolve(Entry &entry, std::string_view name);

    AcDbDatabase *m_drawing;
    std::array<Entry, 256> m_entries{};
};

} // namespace dxf
