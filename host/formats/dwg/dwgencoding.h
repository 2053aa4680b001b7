// Encoder: what rows and functions of kinds write an object's own data through. The counterpart of Decoder.
//
// Groups are taken in order, each once: integer(70) is the next group 70 that is left. What is missing is
// what the old record had there if DXF leaves it out, else what the row says, else zero.
#pragma once

#include "host/formats/dwg/dwgbitwriter.h"
#include "host/formats/dwg/dwgencoder.h"
#include "host/formats/dwg/dwgkinds.h"

#include <map>

namespace dwg
{

/// A handle as it stands in a record.
struct StoredHandle {
    int code = 0, bytes = 0;
    std::uint64_t stored = 0; ///< Perhaps a distance.
    HandleRef meant;
    std::size_t end = 0; ///< Behind it, in bits of the record's body.
};

/// The old record: decoded, with what the groups do not show.
struct OldRecord {
    OldRecord(const FileFacts &facts, const Neighbours &neighbours, const ObjectPlace &place);

    bool isThere() const { return m_isThere; }
    /// The name that the groups of a record show (2).
    QString shownName() const;

    ObjectReader reader;
    Common common;
    Kept kept;
    ResbufList head, own, extended; ///< The groups that it shows.
    ResbufList tagged;              ///< The own groups as the row's fields made them.
    std::size_t ownData = 0;        ///< Where its own data begin, in bits.
    std::vector<StoredHandle> handles;
    std::size_t firstOwnHandle = 0; ///< In `handles`.
    OwnedParts parts;
    bool isPaddedWithOnes = true;
    std::size_t extendedEnd = 0; ///< Where the zero stands that ends extended data.

private:
    bool m_isThere = false;
};

class Encoder
{
public:
    Encoder(const FileFacts &fileFacts, const Names &allNames, const EncodePlace &where, OldRecord &old);

    /// Sorts the own groups by the row. A group without a place fails.
    void setGroups(const Kind &kind, const ResbufList &groups);
    void writeFields(const Kind &kind);

    bool since(DrawingVersion first) const { return facts.since(first); }
    bool isNew() const { return !old.isThere(); }

    // Groups -------------------------------------------------------------------------------------
    std::size_t left(int group) const;
    resbuf take(int group);
    const resbuf &peek(int group) const;
    std::int64_t integer(int group) { return take(group).integer(); }
    int small(int group) { return int(integer(group)); }
    double real(int group) { return take(group).real(); }
    QString text(int group) { return take(group).text(); }
    AcGePoint3d point(int group) { return take(group).point(); }
    AcGePoint2d plane(int group);
    std::uint64_t handle(int group) { return take(group).handle().value; }
    /// A hidden value of the old record; null for a new object.
    const resbuf::Value *hidden(int number) const;
    std::int64_t hiddenInteger(int number, std::int64_t usual = 0) const;
    double hiddenReal(int number, double usual = 0.0) const;
    AcGePoint3d hiddenPoint(int number) const;
    QByteArray hiddenBytes(int number) const;

    // Writing ------------------------------------------------------------------------------------
    void putText(const QString &text);
    double radians(double degrees);
    void putColor(Color color);
    /// 62 or 63 ... with its 420 ...; see Decoder::color.
    void putColorGroups(int group);
    void putHandle(Reference kind, std::uint64_t handle);
    /// The next group of this code, or none; the kind of reference follows from the code.
    void putHandleGroup(int group);
    void putName(SymbolTable table, const QString &name);
    /// Handles of the old record that nothing was written for.
    void copyRestOfHandles();

    void fail(const QString &sentence);
    const QString &failure() const { return m_failure; }

    const FileFacts &facts;
    const Names &names;
    const EncodePlace &place;
    OldRecord &old;
    BitWriter data, texts, handles;
    ResbufList rest; ///< What the row names by "*", in order.
    ResbufList own;  ///< All own groups, without the subclass markers.

private:
    void writeField(const Field &field, int place);
    void fillGaps(const Kind &kind);

    std::map<int, std::vector<resbuf>> m_groups; ///< By code; the next to be taken last.
    std::size_t m_nextHandle = 0;                ///< In the old record.
    QString m_failure;
};

/// How a group refers: 330 softly, 340 hard, 350 and 360 as an owner ...
Reference referenceOf(int group);
/// Reads the groups of a list one after the other.
class GroupCursor
{
public:
    explicit GroupCursor(const ResbufList &groups) : m_groups(groups) {}
    bool atEnd() const { return m_next >= m_groups.size(); }
    bool isAt(int code) const { return !atEnd() && m_groups[m_next].restype == code; }
    /// Empty, and goes nowhere, when another group comes next.
    resbuf take(int code) { return isAt(code) ? m_groups[m_next++] : resbuf(code, {}); }
    resbuf takeAny() { return atEnd() ? resbuf() : m_groups[m_next++]; }

private:
    const ResbufList &m_groups;
    std::size_t m_next = 0;
};

} // namespace dwg
