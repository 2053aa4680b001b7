// Object identity: handles, ids, and the stub that every object of a drawing has.
//
// A stub is small and lives as long as its database; an object comes into being when somebody opens
// it. Ids are stubs seen from outside: they never dangle while the database lives.
#pragma once

#include <compare>
#include <cstdint>
#include <functional>

class AcDbDatabase;
class AcDbObject;
class AcRxClass;

/// The number that names an object inside a drawing file; 0 is none.
struct AcDbHandle {
    std::uint64_t value = 0;

    bool isNull() const { return value == 0; }
    friend auto operator<=>(const AcDbHandle &, const AcDbHandle &) = default;
};

/// DXF object names ("LINE", "LAYER"), numbered once for the process.
using AcDbKind = std::uint16_t;

struct AcDbStub {
    enum Flag : std::uint16_t {
        kEntity = 1 << 0,    ///< Stands in a block, has a layer.
        kHasSource = 1 << 1, ///< `begin` and `size` name a place in the drawing source.
        kErased = 1 << 2,
        kChanged = 1 << 3,      ///< `object` is the truth, not the source.
        kNoFileForm = 1 << 4,   ///< Needed in memory, but this file version has no place for it.
        kNoFileHandle = 1 << 5, ///< The file gives no handle; one was given at opening.
        kSubEntity = 1 << 6,    ///< VERTEX, ATTRIB, SEQEND: owned by the entity before it.
        kRecorded = 1 << 7,     ///< Before-image taken in the current undo group.
        kInChangeList = 1 << 8,
        kBeingMade =
            1 << 9, ///< Its object is being read; a reference that leads back to it finds it not there yet.
    };

    AcDbDatabase *database = nullptr;
    std::uint64_t handle = 0;
    std::uint64_t begin = 0;      ///< First byte (DXF) or bit (DWG section) of the object in the source.
    AcDbObject *object = nullptr; ///< The resident object, owned by the database; null when not resident.
    std::uint32_t size = 0;       ///< Length in the unit of `begin`.
    std::uint32_t index = 0;      ///< Position among the database's stubs.
    std::uint32_t owner = 0;      ///< Index of the owner's stub; 0 is none.
    AcDbKind kind = 0;
    std::uint16_t flags = 0;

    bool has(Flag flag) const { return flags & flag; }
    void set(Flag flag, bool on = true) { flags = std::uint16_t(on ? flags | flag : flags & ~flag); }
};

class AcDbObjectId
{
public:
    static const AcDbObjectId kNull;

    constexpr AcDbObjectId() = default;
    constexpr explicit AcDbObjectId(AcDbStub *stub) : m_stub(stub) {}

    bool isNull() const { return m_stub == nullptr; }
    /// True for an object that exists and is not erased.
    bool isValid() const { return m_stub && !m_stub->has(AcDbStub::kErased); }
    bool isErased() const { return m_stub && m_stub->has(AcDbStub::kErased); }
    bool isEntity() const { return m_stub && m_stub->has(AcDbStub::kEntity); }
    AcDbHandle handle() const { return {m_stub ? m_stub->handle : 0}; }
    AcDbDatabase *database() const { return m_stub ? m_stub->database : nullptr; }
    /// The run-time class, without opening the object; never null for a non-null id.
    AcRxClass *objectClass() const;
    AcDbStub *stub() const { return m_stub; }

    friend bool operator==(const AcDbObjectId &, const AcDbObjectId &) = default;
    friend auto operator<=>(const AcDbObjectId &, const AcDbObjectId &) = default;

private:
    AcDbStub *m_stub = nullptr;
};

inline constexpr AcDbObjectId AcDbObjectId::kNull{};

template <>
struct std::hash<AcDbObjectId> {
    std::size_t operator()(const AcDbObjectId &id) const noexcept
    {
        return std::hash<const void *>()(id.stub());
    }
};
