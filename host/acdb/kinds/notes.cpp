// Dimensions, leaders and multileaders.
#include "host/acdb/kinds/entitykind.h"

#include <algorithm>

using namespace gripping;
using namespace listed;

static constexpr Rule kDimensionRules[] = {
    {10, Role::point}, {11, Role::planePoint}, {12, Role::planePoint}, {13, Role::point}, {14, Role::point},
    {15, Role::point}, {16, Role::planePoint}, {40, Role::length},     {52, Role::turn}};

static constexpr Rule kLeaderRules[] = {{10, Role::point},      {40, Role::length},  {41, Role::length},
                                        {211, Role::direction}, {212, Role::vector}, {213, Role::vector}};

static void finishDimension(EntityTransform &t)
{
    // Group 51 is the negative angle of the horizontal direction.
    if (resbuf *const horizontal = t.find(51); horizontal || !sameNumber(t.turnedAngle(0.0), 0.0))
        t.setReal(51, wrapDegrees(-t.turnedAngle(-(horizontal ? horizontal->real() : 0.0))), 0.0, 10);
    const std::int64_t type = t.integer(70, 0) & 7;
    if (resbuf *const angle = t.find(50))
        t.setReal(*angle, t.turnedAngle(angle->real()));
    else if (type == 0)
        t.setReal(50, t.turnedAngle(0.0), 0.0, 14);
    constexpr std::int64_t kAngular = 2;
    constexpr std::int64_t kAngular3Point = 5;
    resbuf *const measured = t.find(42);
    if (measured && type != kAngular && type != kAngular3Point)
        t.apply(Role::length, *measured);
}

static void leaderGrips(const Shape &shape, Grips &grips)
{
    addPoints(shape, grips, 10, Role::point);
}

static Section dimensionSection()
{
    return {{"AcDbDimension"},
            {given(2), given(10), point(11, 0, 0, 0), point(12, 0, 0, 0), integer(70, 0), text(1, ""),
             integer(71, 5), integer(72, 1), real(41, 1), given(42), integer(73, 0), integer(74, 0),
             integer(75, 0), real(52, 0), real(53, 0), real(54, 0), real(51, 0), normal(),
             text(3, "Standard")}};
}

namespace
{

/// A MULTILEADER nests its parts in braces: the content, its leaders, their lines.
class MultileaderTransform
{
public:
    explicit MultileaderTransform(EntityTransform &t) : m_t(t) {}

    void run()
    {
        for (std::size_t i = 0; i < m_t.end(); ++i) {
            resbuf &group = m_t.groups()[i];
            if (m_depth < 3 && group.restype == 300 + 2 * m_depth && group.text() == kOpening[m_depth])
                ++m_depth;
            else if (m_depth > 0 && group.restype == 299 + 2 * m_depth && group.text() == u"}")
                --m_depth;
            else
                visit(i);
        }
    }

private:
    static constexpr QStringView kOpening[] = {u"CONTEXT_DATA{", u"LEADER{", u"LEADER_LINE{"};
    static constexpr Rule kProperties[] = {{41, Role::length}, {42, Role::length}, {45, Role::length}};
    static constexpr Rule kContent[] = {
        {10, Role::point},   {12, Role::point},      {13, Role::direction},  {15, Role::point},
        {40, Role::length},  {41, Role::length},     {43, Role::length},     {44, Role::length},
        {110, Role::point},  {111, Role::direction}, {112, Role::direction}, {140, Role::length},
        {145, Role::length},
    };
    static constexpr Rule kLeader[] = {
        {10, Role::point}, {11, Role::direction}, {12, Role::point}, {13, Role::point}, {40, Role::length}};
    static constexpr Rule kLine[] = {{10, Role::point}, {11, Role::point}, {12, Role::point}};

    void visit(std::size_t i)
    {
        static constexpr std::span<const Rule> kByDepth[] = {kProperties, kContent, kLeader, kLine};
        resbuf &group = m_t.groups()[i];
        const std::span<const Rule> rules = kByDepth[m_depth];
        const auto rule = std::ranges::find(rules, group.restype, &Rule::code);
        if (rule != rules.end())
            m_t.apply(rule->role, group);
        else if (m_depth == 1 && (group.restype == 11 || group.restype == 14))
            reverseNormal(group);
        else if (m_depth == 1 && (group.restype == 42 || group.restype == 46))
            m_t.setReal(group, m_t.turnedAngle(group.real() * 180.0 / kGePi) * kGePi / 180.0);
        else if (m_depth == 1 && group.restype == 47)
            placeBlock(i);
    }

    void reverseNormal(resbuf &group)
    {
        const AcGeVector3d turned = m_t.turned(group.point().asVector());
        const AcGeVector3d seen = m_t.mirrored() ? -turned : turned;
        m_t.setPoint(group, {seen.x, seen.y, seen.z});
    }

    // Sixteen reals in rows; only the first 47 of them starts the work.
    void placeBlock(std::size_t i)
    {
        ResbufList &groups = m_t.groups();
        if (groups[i - 1].restype == 47 || i + 12 > m_t.end())
            return;
        AcGeMatrix3d placed;
        for (std::size_t k = 0; k < 12; ++k) {
            if (groups[i + k].restype != 47)
                return;
            placed.entry[k / 4][k % 4] = groups[i + k].real();
        }
        placed = m_t.matrix() * placed;
        for (std::size_t k = 0; k < 12; ++k)
            m_t.setReal(groups[i + k], placed.entry[k / 4][k % 4]);
    }

    EntityTransform &m_t;
    int m_depth = 0;
};

} // namespace

static void transformMultileader(EntityTransform &transform)
{
    MultileaderTransform(transform).run();
}

std::vector<EntityKind> entitykinds::notes()
{
    return {
        // It shows entities of a block that nobody makes anew, so all of it moves.
        {.dxfName = "DIMENSION",
         .className = "AcDbDimension",
         .listed = {{dimensionSection()}},
         .transforming = TransformRules{kDimensionRules, finishDimension},
         .grips = {wholeAtPlanePoint<11>}},
        {.dxfName = "LEADER",
         .className = "AcDbLeader",
         .transforming = TransformRules{kLeaderRules},
         .grips = {leaderGrips}},
        {.dxfName = "MULTILEADER",
         .className = "AcDbMLeader",
         .transforming = TransformRules{{}, transformMultileader, false}},
        {.dxfName = "MLEADER", .transforming = TransformRules{{}, transformMultileader, false}},
    };
}
