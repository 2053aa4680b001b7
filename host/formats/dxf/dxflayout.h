// The structure of an opened DXF file: where its sections, tables, variables and class records stand.
// The reader fills it, the writer places its edits by it. Offsets count from the start of the file.
#pragma once

#include "host/acdb/dbdatabase.h"

#include <optional>

namespace dxf
{

struct Place {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
};

struct Section {
    QByteArray name;
    std::uint64_t begin = 0; ///< Its "0 SECTION".
    std::uint64_t end = 0;   ///< Its "0 ENDSEC", or where that should stand.
    bool closed = false;     ///< The ENDSEC is there.
};

struct Table {
    QByteArray name;
    std::optional<SymbolTable> kind; ///< None for tables that the host does not know.
    Place head;                      ///< From "0 TABLE" to the first record.
    std::uint64_t end = 0;           ///< Its "0 ENDTAB", or where that should stand.
    bool closed = false;
    AcDbStub *stub = nullptr; ///< The table's own object; null when it has no handle.
};

struct Variable {
    QByteArray name;
    Place place; ///< From its group 9 to the next one.
};

struct ClassRecord {
    QByteArray dxfName;
    Place place;
};

/// A BLOCK without its ENDBLK, and where that should stand.
struct UnendedBlock {
    const AcDbStub *begin = nullptr;
    std::uint64_t end = 0;
};

struct Layout {
    std::vector<Section> sections;
    std::vector<Table> tables;
    std::vector<Variable> variables;
    std::vector<ClassRecord> classes;
    std::vector<UnendedBlock> unendedBlocks;
    std::uint64_t eof = 0; ///< The "0 EOF", or the end of what could be read.
    bool hasEof = false;
    /// Objects whose handle in the file is another's too and was replaced at opening.
    std::vector<std::uint32_t> renumbered;

    const Section *section(QByteArrayView name) const
    {
        for (const Section &candidate : sections) {
            if (candidate.name == name)
                return &candidate;
        }
        return nullptr;
    }
};

/// How the file writes what the format leaves open; new groups follow it.
struct TextStyle {
    QByteArray lineEnd = "\r\n";
    int codeWidth = 3;         ///< Codes are right-justified to this width.
    bool padsIntegers = false; ///< Integers are right-justified: 6, 9 or 18 columns.
};

} // namespace dxf
