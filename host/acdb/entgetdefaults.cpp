#include "host/acdb/entgetdefaults.h"

#include "host/acdb/kinds/entitykind.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <optional>

using namespace listed;

namespace
{

/// Display properties of every kind; they keep the order of the file.
const std::vector<Row> &commonRows()
{
    static const std::vector<Row> rows{
        text(8, "0"),
        unlessDefault(text(6, "BYLAYER")),
        unlessDefault(integer(62, 256)),
        unlessDefault(real(48, 1)),
        unlessDefault(integer(60, 0)),
        unlessDefault(integer(370, -1)),
        given(420),
        given(430),
        given(440),
    };
    return rows;
}

// Names are found whatever their letters' case, so "STANDARD" is the default as well.
bool isDefault(const Row &row, const resbuf::Value &value)
{
    const auto *const wanted = std::get_if<QString>(&row.defaultValue);
    const auto *const name = std::get_if<QString>(&value);
    return wanted && name ? name->compare(*wanted, Qt::CaseInsensitive) == 0 : value == row.defaultValue;
}

/// Where the layer and the display properties end. Files before R13 mix them with the rest.
ResbufList::iterator takeCommon(ResbufList &content, ResbufList &common)
{
    const auto isMarker = [](const resbuf &group) { return group.restype == 100; };
    const auto end = std::find_if(content.begin(), content.end(), isMarker);
    const auto isCommon = [](const resbuf &group) {
        const auto &rows = commonRows();
        return std::any_of(rows.begin(), rows.end(),
                           [&](const Row &row) { return row.code == group.restype; });
    };
    if (end != content.end()) {
        common.assign(std::move_iterator(content.begin()), std::move_iterator(end));
        return end;
    }
    const auto rest = std::stable_partition(content.begin(), content.end(), isCommon);
    common.assign(std::move_iterator(content.begin()), std::move_iterator(rest));
    return rest;
}

void settleCommon(ResbufList &common)
{
    for (const Row &row : commonRows()) {
        if (row.habit == Habit::unlessDefault)
            std::erase_if(common, [&row](const resbuf &group) {
                return group.restype == row.code && isDefault(row, group.resval);
            });
        else if (row.habit == Habit::always && !findGroup(common, row.code))
            common.insert(common.begin(), {row.code, row.defaultValue});
    }
}

/// A group of the table, and what follows it that the table does not know.
struct Entry {
    resbuf group;
    ResbufList followers;
};

/// Sorts the groups of one entity into the rows of its kind and lists them again.
class Settler
{
public:
    explicit Settler(const listed::Groups &kind) : m_kind(kind)
    {
        for (const Section &section : kind.sections)
            m_parts.push_back({nullptr, {}, std::vector<std::vector<Entry>>(section.rows.size())});
    }

    /// Takes the groups; markers stay where they are until the list is made.
    void add(ResbufList::iterator from, ResbufList::iterator end);
    void moveTo(ResbufList &list);
    std::vector<Entry> *entries(int code)
    {
        const auto place = placeOf(code);
        return place ? &m_parts[place->first].rows[place->second] : nullptr;
    }

private:
    using Place = std::pair<std::size_t, std::size_t>; ///< Section and row.

    struct Part {
        const resbuf *marker;
        ResbufList head; ///< Unknown groups behind the marker.
        std::vector<std::vector<Entry>> rows;
    };

    std::optional<Place> placeOf(int code) const;
    std::optional<std::size_t> sectionAt(const resbuf &marker) const;
    static void listPart(const Section &section, Part &part, ResbufList &list);
    static void moveAll(ResbufList &from, ResbufList &to);

    const listed::Groups &m_kind;
    std::vector<Part> m_parts;
    ResbufList m_others; ///< Subclasses that the table does not know.
};

std::optional<Settler::Place> Settler::placeOf(int code) const
{
    for (std::size_t section = 0; section < m_kind.sections.size(); ++section) {
        const std::vector<Row> &rows = m_kind.sections[section].rows;
        const auto row =
            std::find_if(rows.begin(), rows.end(), [code](const Row &each) { return each.code == code; });
        if (row != rows.end())
            return Place(section, std::size_t(row - rows.begin()));
    }
    return {};
}

/// The first section of the marker's name that has none yet.
std::optional<std::size_t> Settler::sectionAt(const resbuf &marker) const
{
    const QString name = marker.text();
    for (std::size_t i = 0; i < m_parts.size(); ++i) {
        const auto &names = m_kind.sections[i].markers;
        const auto isName = [&name](const char *each) { return name == QLatin1String(each); };
        if (!m_parts[i].marker && std::any_of(names.begin(), names.end(), isName))
            return i;
    }
    return {};
}

void Settler::add(ResbufList::iterator from, ResbufList::iterator end)
{
    ResbufList *followers = &m_parts.front().head;
    bool isKnown = true;
    for (auto group = from; group != end; ++group) {
        if (group->restype == 100) {
            const auto section = sectionAt(*group);
            isKnown = section.has_value();
            followers = isKnown ? &m_parts[*section].head : &m_others;
            if (isKnown)
                m_parts[*section].marker = &*group;
            else
                m_others.push_back(*group);
            continue;
        }
        const auto place = isKnown ? placeOf(group->restype) : std::nullopt;
        if (!place) {
            followers->push_back(std::move(*group));
            continue;
        }
        std::vector<Entry> &row = m_parts[place->first].rows[place->second];
        row.push_back({std::move(*group), {}});
        if (const auto *flat = std::get_if<AcGePoint2d>(&row.back().group.resval); flat && !m_kind.planar)
            row.back().group.assign(AcGePoint3d(flat->x, flat->y, 0));
        followers = &row.back().followers;
    }
}

// A marker that the file does not have is written where there is one name for it only.
void Settler::listPart(const Section &section, Part &part, ResbufList &list)
{
    if (part.marker)
        list.push_back(*part.marker);
    else if (section.markers.size() == 1)
        list.emplace_back(100, QString::fromLatin1(section.markers.front()));
    moveAll(part.head, list);
    for (std::size_t i = 0; i < section.rows.size(); ++i) {
        const Row &row = section.rows[i];
        if (part.rows[i].empty() && row.habit == Habit::always)
            list.emplace_back(row.code, row.defaultValue);
        for (Entry &entry : part.rows[i]) {
            const bool standard = row.habit != Habit::given && isDefault(row, entry.group.resval);
            if (!standard)
                list.push_back(std::move(entry.group));
            else if (row.habit == Habit::always)
                list.emplace_back(row.code, row.defaultValue);
            moveAll(entry.followers, list);
        }
    }
}

void Settler::moveAll(ResbufList &from, ResbufList &to)
{
    to.insert(to.end(), std::move_iterator(from.begin()), std::move_iterator(from.end()));
}

void Settler::moveTo(ResbufList &list)
{
    for (std::size_t i = 0; i < m_parts.size(); ++i)
        listPart(m_kind.sections[i], m_parts[i], list);
    moveAll(m_others, list);
}

// Polylines ---------------------------------------------------------------------------------------

/// Start width, end width, bulge and identifier of a vertex.
constexpr std::array kVertexCodes{40, 41, 42, 91};

double realOf(const ResbufList &groups, int code, double otherwise)
{
    const resbuf *const group = findGroup(groups, code);
    return group ? group->real() : otherwise;
}

// Each vertex has all its values. One width for all of them is the width of the polyline.
void settleVertices(Settler &settler)
{
    std::vector<Entry> &constant = *settler.entries(43);
    std::vector<Entry> &vertices = *settler.entries(10);
    const double width = constant.empty() ? 0.0 : constant.front().group.real();
    const double common = vertices.empty() ? width : realOf(vertices.front().followers, 40, width);
    bool varies = false;
    for (Entry &vertex : vertices) {
        const double start = realOf(vertex.followers, 40, width);
        const double end = realOf(vertex.followers, 41, width);
        varies = varies || start != common || end != common;
        const resbuf *const identifier = findGroup(vertex.followers, 91);
        ResbufList settled{{40, start},
                           {41, end},
                           {42, realOf(vertex.followers, 42, 0.0)},
                           {91, identifier ? identifier->integer() : std::int64_t(0)}};
        std::erase_if(vertex.followers, [](const resbuf &group) {
            return std::find(kVertexCodes.begin(), kVertexCodes.end(), group.restype) != kVertexCodes.end();
        });
        vertex.followers.insert(vertex.followers.begin(), settled.begin(), settled.end());
    }
    ResbufList strangers = constant.empty() ? ResbufList() : constant.front().followers;
    constant.clear();
    if (!varies)
        constant.push_back({resbuf(43, common), std::move(strangers)});
}

// Paragraphs --------------------------------------------------------------------------------------

// Files give the direction of a paragraph as a vector or as an angle; lists give both.
void settleDirection(Settler &settler)
{
    std::vector<Entry> &direction = *settler.entries(11);
    std::vector<Entry> &angle = *settler.entries(50);
    if (direction.empty()) {
        const double turned = angle.empty() ? 0.0 : angle.front().group.real();
        const AcGePoint3d along =
            turned == 0.0 ? AcGePoint3d(1, 0, 0) : AcGePoint3d(std::cos(turned), std::sin(turned), 0);
        direction.push_back({resbuf(11, along), {}});
    }
    if (angle.empty()) {
        const AcGePoint3d along = direction.front().group.point();
        angle.push_back({resbuf(50, std::atan2(along.y, along.x)), {}});
    }
}

} // namespace

void acdbSettleDefaults(AcDbKind kind, ResbufList &content)
{
    ResbufList common;
    const auto begin = takeCommon(content, common);
    settleCommon(common);
    const EntityKind *const row = acdbEntityKind(kind);
    const listed::Groups *const known = row && !row->listed.sections.empty() ? &row->listed : nullptr;
    const auto stop = known ? std::find_if(begin, content.end(),
                                           [known](const resbuf &group) {
                                               return group.restype == 101 || group.restype == known->stop;
                                           })
                            : begin;
    if (known) {
        Settler settler(*known);
        settler.add(begin, stop);
        if (known->planar)
            settleVertices(settler);
        else if (known->stop != 101)
            settleDirection(settler);
        settler.moveTo(common);
    }
    common.insert(common.end(), std::move_iterator(stop), std::move_iterator(content.end()));
    content = std::move(common);
}
