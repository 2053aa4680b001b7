// MemoryDrawing: small drawings built in a test, without a file.
//
//     tests::MemoryDrawing drawing;
//     drawing.layer("WALLS", {.flags = 4});
//     const auto door = drawing.block("DOOR");
//     drawing.entity("LINE", {{10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(4, 3, 0)}}, door);
//     const auto insert = drawing.entity("INSERT", {{8, "WALLS"}, {2, "DOOR"}, {10, AcGePoint3d(5, 5, 0)}});
//     const std::unique_ptr<AcDbDatabase> database = drawing.open();
//     AcDbObjectPointer<AcDbEntity> opened(database->getAcDbObjectId({insert}), AcDb::kForRead);
//
// The database reads its objects from ready-made group lists, as it would from a file: nothing is
// changed and nothing is resident after opening. Handles are given in the order of the calls.
#pragma once

#include "host/acdb/dbdatabase.h"

#include <initializer_list>
#include <map>
#include <memory>

namespace tests
{

/// A group written short: {8, "WALLS"}, {70, 1}, {40, 2.5}, {10, AcGePoint3d(1, 2, 0)}.
struct Group : resbuf {
    Group(int code, const char *text) : resbuf(code, QString::fromUtf8(text)) {}
    Group(int code, const QString &text) : resbuf(code, text) {}
    Group(int code, int value) : resbuf(code, std::int64_t(value)) {}
    Group(int code, double value) : resbuf(code, value) {}
    Group(int code, AcGePoint2d value) : resbuf(code, value) {}
    Group(int code, AcGePoint3d value) : resbuf(code, value) {}
    Group(int code, AcDbHandle value) : resbuf(code, value) {}
    Group(int code, const QByteArray &value) : resbuf(code, value) {}
};
using Groups = std::vector<Group>;

class MemoryDrawing
{
public:
    struct LayerState {
        int flags = 0; ///< 1 frozen, 4 locked
        int color = 7; ///< Negative: off.
    };

    /// Has model space, paper space, layer 0 and an empty named-object dictionary.
    explicit MemoryDrawing(DrawingVersion version = DrawingVersion::r2000,
                           DrawingForm format = DrawingForm::dxfText);

    std::uint64_t layer(const char *name) { return layer(name, LayerState()); }
    std::uint64_t layer(const char *name, LayerState state);
    /// Any other table record; kind and name are added to the groups.
    std::uint64_t record(SymbolTable table, const char *kind, const char *name, const Groups &groups);
    /// The handle of the block record.
    std::uint64_t block(const char *name, AcGePoint3d origin = {});
    std::uint64_t modelSpace() const { return m_modelSpace; }
    std::uint64_t paperSpace() const { return m_paperSpace; }

    /// Kind and handle, and layer 0 when the groups name none, are added in front. Subclass markers
    /// other than AcDbEntity are the test's business. `block` 0 is model space.
    std::uint64_t entity(const char *kind, const Groups &groups, std::uint64_t block = 0);
    /// A vertex, attribute or end marker of the entity added last.
    std::uint64_t subEntity(const char *kind, const Groups &groups);
    std::uint64_t object(const char *kind, const Groups &groups, std::uint64_t owner = 0);

    void headerVariable(const char *name, const Groups &groups);

    /// Each call makes a new database of what was added so far.
    std::unique_ptr<AcDbDatabase> open() const;

private:
    struct Object {
        QByteArray kind;
        ResbufList groups;
        std::uint64_t owner = 0;
        std::uint16_t flags = 0;
        int table = -1; ///< SymbolTable of a record.
    };
    class Source;

    std::uint64_t add(const char *kind, const Groups &groups, std::uint64_t owner, std::uint16_t flags,
                      int table = -1);

    DrawingVersion m_version;
    DrawingForm m_format;
    std::vector<Object> m_objects; ///< The handle is the position + 1.
    std::map<std::uint64_t, std::pair<std::uint64_t, std::uint64_t>> m_blockEnds;
    std::vector<std::pair<QByteArray, ResbufList>> m_header;
    std::uint64_t m_modelSpace = 0;
    std::uint64_t m_paperSpace = 0;
    std::uint64_t m_namedObjects = 0;
};

} // namespace tests
