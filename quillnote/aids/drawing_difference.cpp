#include "quillnote/aids/drawing_difference.h"

#include "quillnote/aids/links/link_record.h"
#include "quillnote/aids/overlay_copy.h"
#include "quillnote/entity/mark_class.h"
#include "quillnote/snapshot/commands/drawing_content.h"

#include "host/acdb/dbentity.h"
#include "host/aced/edview.h"
#include "host/acgi/query/visibility.h"

#include <QHash>

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>

AcDbExtents ComparedSpace::extents() const
{
    return space.isNull() ? AcDbExtents() : acedSpaceExtents(*database, space);
}

namespace
{

/// What can be seen of a space, in drawing order.
std::vector<AcDbObjectId> seenIn(const ComparedSpace &where)
{
    std::vector<AcDbObjectId> seen;
    const BlockContents *const contents =
        where.space.isNull() ? nullptr : where.database->blockContents(where.space);
    if (!contents)
        return seen;
    acgi::Visibility visibility;
    const AcDbKind passedOver[] = {acdbKind(kMarkDxfName), acdbKind(kLinkDxfName), acdbKind("VIEWPORT")};
    for (const std::uint32_t index : contents->entities) {
        const AcDbObjectId id(where.database->stub(index));
        if (!id.isValid() || std::ranges::find(passedOver, id.stub()->kind) != std::end(passedOver))
            continue;
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        if (entity && visibility.isVisible(*entity) && !showsOverlay(*entity))
            seen.push_back(id);
    }
    return seen;
}

// Nearly the same ---------------------------------------------------------------------------------

/// The content of an entity: what has to be equal, and numbers that may differ a little.
struct Numbers {
    QByteArray fixed;
    std::vector<double> coordinates;
    std::vector<double> others;
    AcDbObjectId id;
};

Numbers numbersOf(AcDbObjectId id, const QByteArray &content)
{
    Numbers numbers;
    numbers.id = id;
    for (const QByteArray &line : content.split('\n')) {
        const qsizetype equals = line.indexOf('=');
        bool isCode = false;
        const GroupKind kind = groupKind(line.left(equals).toInt(&isCode));
        if (!isCode || (kind != GroupKind::point && kind != GroupKind::real)) {
            numbers.fixed += line + '\n';
            continue;
        }
        numbers.fixed += line.left(equals) + '\n';
        std::vector<double> &values = kind == GroupKind::point ? numbers.coordinates : numbers.others;
        for (const QByteArray &word : line.mid(equals + 1).split(' ')) {
            if (!word.isEmpty())
                values.push_back(word.toDouble());
        }
    }
    return numbers;
}

bool areNear(const Numbers &a, const Numbers &b, double tolerance)
{
    const auto same = [tolerance](double x, double y) { return std::abs(x - y) <= tolerance; };
    const auto alike = [](double x, double y) {
        constexpr double kShare = 0.001;
        return std::abs(x - y) <= kShare * std::max({1.0, std::abs(x), std::abs(y)});
    };
    return std::ranges::equal(a.coordinates, b.coordinates, same) &&
           std::ranges::equal(a.others, b.others, alike);
}

double firstCoordinate(const Numbers &numbers)
{
    return numbers.coordinates.empty() ? 0.0 : numbers.coordinates.front();
}

/// Takes away from both what is nearly the same in the other.
void cancelNear(std::vector<AcDbObjectId> &old, std::vector<AcDbObjectId> &now, DrawingContent &oldContent,
                DrawingContent &newContent, double tolerance)
{
    std::map<QByteArray, std::vector<Numbers>> waiting;
    for (const AcDbObjectId id : old) {
        Numbers numbers = numbersOf(id, oldContent.of(id));
        std::vector<Numbers> &alike = waiting[numbers.fixed];
        alike.push_back(std::move(numbers));
    }
    for (auto &[fixed, alike] : waiting)
        std::ranges::sort(alike, {}, firstCoordinate);
    std::unordered_set<AcDbObjectId> found;
    std::erase_if(now, [&](AcDbObjectId id) {
        const Numbers wanted = numbersOf(id, newContent.of(id));
        const auto alike = waiting.find(wanted.fixed);
        if (alike == waiting.end())
            return false;
        const double first = firstCoordinate(wanted);
        auto other = std::ranges::lower_bound(alike->second, first - tolerance, {}, firstCoordinate);
        for (; other != alike->second.end() && firstCoordinate(*other) <= first + tolerance; ++other) {
            if (!found.contains(other->id) && areNear(*other, wanted, tolerance))
                return found.insert(other->id).second;
        }
        return false;
    });
    std::erase_if(old, [&](AcDbObjectId id) { return found.contains(id); });
}

// Places ------------------------------------------------------------------------------------------

struct Differing {
    AcDbExtents box;
    bool isNew;
};

/// A grid over everything that differs: what stands in cells that touch is one place.
class Places
{
public:
    Places(const std::vector<Differing> &all, const AcDbExtents &whole) : m_all(all), m_whole(whole)
    {
        std::iota(m_leader.begin(), m_leader.end(), 0);
    }
    std::vector<DifferingPlace> find()
    {
        for (const Differing &each : m_all) {
            if (!isLarge(each))
                forCells(each.box, [this](int cell) { m_isTaken[std::size_t(cell)] = true; });
        }
        joinNeighbours();
        std::map<int, DifferingPlace> places;
        int large = -1;
        for (const Differing &each : m_all) {
            int key = large;
            if (isLarge(each))
                --large;
            else
                key = leader(cellAt(each.box.minPoint()));
            DifferingPlace &place = places[key];
            place.box.addExt(each.box);
            ++(each.isNew ? place.added : place.removed);
        }
        std::vector<DifferingPlace> sorted;
        sorted.reserve(places.size());
        for (const auto &[key, place] : places)
            sorted.push_back(place);
        std::ranges::stable_sort(sorted, {}, [this](const DifferingPlace &place) {
            return std::pair(-row(place.box.maxPoint().y), place.box.minPoint().x);
        });
        return sorted;
    }

private:
    static constexpr int kSide = 64;

    /// A frame around everything would make one place of all of them.
    bool isLarge(const Differing &each) const
    {
        const AcGeVector3d size = each.box.maxPoint() - each.box.minPoint();
        const AcGeVector3d whole = m_whole.maxPoint() - m_whole.minPoint();
        return size.x > whole.x / 2 && size.y > whole.y / 2;
    }
    int part(double value, double low, double high) const
    {
        return high > low ? std::clamp(int((value - low) / (high - low) * kSide), 0, kSide - 1) : 0;
    }
    int column(double x) const { return part(x, m_whole.minPoint().x, m_whole.maxPoint().x); }
    int row(double y) const { return part(y, m_whole.minPoint().y, m_whole.maxPoint().y); }
    int cellAt(const AcGePoint3d &point) const { return row(point.y) * kSide + column(point.x); }
    template <class Work>
    void forCells(const AcDbExtents &box, Work work) const
    {
        for (int y = row(box.minPoint().y); y <= row(box.maxPoint().y); ++y) {
            for (int x = column(box.minPoint().x); x <= column(box.maxPoint().x); ++x)
                work(y * kSide + x);
        }
    }
    int leader(int cell)
    {
        while (m_leader[std::size_t(cell)] != cell)
            cell = m_leader[std::size_t(cell)] = m_leader[std::size_t(m_leader[std::size_t(cell)])];
        return cell;
    }
    void joinNeighbours()
    {
        for (int y = 0; y < kSide; ++y) {
            for (int x = 0; x < kSide; ++x) {
                const int cell = y * kSide + x;
                for (const auto &[dx, dy] :
                     {std::pair(1, 0), std::pair(-1, 1), std::pair(0, 1), std::pair(1, 1)}) {
                    const bool isInside = x + dx >= 0 && x + dx < kSide && y + dy < kSide;
                    const int other = isInside ? cell + dy * kSide + dx : cell;
                    if (m_isTaken[std::size_t(cell)] && m_isTaken[std::size_t(other)])
                        m_leader[std::size_t(leader(other))] = leader(cell);
                }
            }
        }
    }

    const std::vector<Differing> &m_all;
    AcDbExtents m_whole;
    std::vector<bool> m_isTaken = std::vector<bool>(std::size_t(kSide * kSide));
    std::vector<int> m_leader = std::vector<int>(std::size_t(kSide * kSide));
};

std::vector<DifferingPlace> placesOf(const DrawingDifference &difference, const AcDbExtents &whole)
{
    std::vector<Differing> all;
    const auto add = [&all](const std::unordered_set<AcDbObjectId> &ids, bool isNew) {
        for (const AcDbObjectId id : ids) {
            const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
            AcDbExtents box;
            if (entity && entity->getGeomExtents(box) == Acad::eOk && box.isValid())
                all.push_back({box, isNew});
        }
    };
    add(difference.onlyOld, false);
    add(difference.onlyNew, true);
    AcDbExtents everything = whole;
    for (const Differing &each : all)
        everything.addExt(each.box);
    return all.empty() ? std::vector<DifferingPlace>() : Places(all, everything).find();
}

} // namespace

DrawingDifference compareSpaces(const ComparedSpace &old, const ComparedSpace &now, double tolerance,
                                const base::ProgressTeller::Listener &listener)
{
    base::ProgressTeller teller(listener, QStringLiteral("比较图形"));
    DrawingContent oldContent;
    DrawingContent newContent;
    const std::vector<AcDbObjectId> oldSeen = seenIn(old);
    const std::vector<AcDbObjectId> newSeen = seenIn(now);
    const double total = double(oldSeen.size() + newSeen.size());
    DrawingDifference difference;
    std::size_t done = 0;
    QHash<QByteArray, std::vector<AcDbObjectId>> left;
    const auto goesOn = [&] {
        difference.isStopped = difference.isStopped || !teller.goesOn(double(++done) / total);
        return !difference.isStopped;
    };
    for (const AcDbObjectId id : oldSeen) {
        if (!goesOn())
            return difference;
        left[oldContent.of(id)].push_back(id);
    }
    std::vector<AcDbObjectId> added;
    for (const AcDbObjectId id : newSeen) {
        if (!goesOn())
            return difference;
        const auto same = left.find(newContent.of(id));
        if (same != left.end() && !same->empty())
            same->pop_back();
        else
            added.push_back(id);
    }
    std::vector<AcDbObjectId> removed;
    for (const std::vector<AcDbObjectId> &ids : std::as_const(left))
        removed.insert(removed.end(), ids.begin(), ids.end());
    if (tolerance > 0.0)
        cancelNear(removed, added, oldContent, newContent, tolerance);
    difference.onlyOld = {removed.begin(), removed.end()};
    difference.onlyNew = {added.begin(), added.end()};
    AcDbExtents whole = old.extents();
    whole.addExt(now.extents());
    difference.places = placesOf(difference, whole);
    return difference;
}
