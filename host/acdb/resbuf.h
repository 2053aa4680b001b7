// Groups: a code and a value. An object's content in memory is the list of its DXF groups.
//
// Coordinates that stand together in a file (10 20 30) are one group with a point. Text is decoded;
// handles are numbers; binary chunks are bytes. A group that came from a file and was not assigned to
// keeps the very bytes it came from, so that writing it back cannot change it.
#pragma once

#include "host/acdb/dbid.h"
#include "host/acge/gepoint.h"

#include <QByteArray>
#include <QString>

#include <span>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

struct resbuf {
    using Value = std::variant<std::monostate, QString, std::int64_t, double, AcGePoint2d, AcGePoint3d,
                               AcDbHandle, AcDbObjectId, QByteArray>;

    int restype = 0;
    Value resval;
    /// The group's own bytes in the drawing source, line ends included; empty for values made here.
    std::string_view source = {};

    resbuf() = default;
    resbuf(int code, Value value) : restype(code), resval(std::move(value)) {}

    /// Reading with the wrong type gives an empty text, 0, or the origin.
    QString text() const;
    std::int64_t integer() const;
    double real() const;
    /// A plane point has z = 0.
    AcGePoint3d point() const;
    AcDbHandle handle() const;
    AcDbObjectId id() const;
    QByteArray bytes() const;

    /// Assigning forgets the source bytes.
    void assign(Value value);

    /// Same code and same value; where it came from does not matter.
    friend bool operator==(const resbuf &a, const resbuf &b)
    {
        return a.restype == b.restype && a.resval == b.resval;
    }
};

using ResbufList = std::vector<resbuf>;

/// Tells the groups that applications keep with an object, "102 {NAME" to "102 }", from its own. To be asked
/// about each group in order.
class ApplicationGroups
{
public:
    bool holds(const resbuf &next)
    {
        if (next.restype != 102)
            return m_inside;
        const bool opens = next.text().startsWith(u'{');
        return std::exchange(m_inside, opens) || opens;
    }

private:
    bool m_inside = false;
};

/// Where an object's own groups end: at an embedded object (101) or at extended data (1001).
std::size_t ownGroupsEnd(std::span<const resbuf> groups);

/// The object's own first group with `code` at or after `from`; null when missing.
const resbuf *findGroup(const ResbufList &list, int code, std::size_t from = 0);
resbuf *findGroup(ResbufList &list, int code, std::size_t from = 0);

/// Index just behind the 100 group named `subclass`; list.size() when missing.
std::size_t subclassBegin(const ResbufList &list, QStringView subclass);

/// Index of the first extended-data group (1001); list.size() when there is none.
std::size_t extendedDataBegin(const ResbufList &list);

/// What kind of value a group code carries.
enum class GroupKind : std::uint8_t {
    text,
    point,
    real,
    integer16,
    integer32,
    integer64,
    boolean,
    handle,
    binary
};

/// The DXF reference's table of group codes; unknown codes carry text.
GroupKind groupKind(int code);

/// In a plane of coordinates, codes 10 to 18, 110 to 112, 210 to 213 and 1010 to 1013 begin a point whose
/// y and z carry code + 10 and code + 20.
bool beginsPoint(int code);
