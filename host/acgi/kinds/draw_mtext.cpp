// Drawing of multi-line text entities.
#include "host/acgi/kinds/draw_mtext.h"

#include "host/acdb/dbtransform.h"
#include "host/acgi/kinds/draw_tools.h"
#include "host/acgi/kinds/kinds.h"
#include "host/acgi/kinds/mtext_columns.h"
#include "host/acgi/text/text_layout.h"

#include <algorithm>

namespace acgi
{

using GroupSpan = std::span<const resbuf>;

/// What follows the mark of an embedded object (101), up to the extended data.
static GroupSpan embeddedGroups(const AcDbEntity &entity)
{
    const ResbufList &groups = entity.groups();
    const GroupSpan own = GroupSpan(groups).first(extendedDataBegin(groups));
    const auto mark = std::ranges::find(own, 101, &resbuf::restype);
    return mark == own.end() ? GroupSpan() : own.subspan(std::size_t(mark - own.begin()) + 1);
}

namespace
{

/// Groups as the text of an MTEXT has them, wherever it is stored.
class MTextGroups
{
public:
    MTextGroups(const OwnGroups &groups, const AcDbDatabase *database) : m_groups(groups)
    {
        for (const resbuf &group : groups)
            read(group);
        if (database)
            m_text.style = namedTextStyle(*database, m_style);
        m_text.along = direction();
        if (!(m_text.height > 0.0))
            m_text.height = m_text.style.textSize();
        readMask();
        readColumns();
    }

    MText &text() { return m_text; }
    bool isCut() const { return m_isCut; }

private:
    void read(const resbuf &group);
    AcGeVector3d direction() const;
    void readMask();
    void readColumns();

    OwnGroups m_groups;
    MText m_text;
    QString m_style;
    AcGeVector3d m_direction; ///< None: not stated.
    std::optional<double> m_rotation;
    bool m_isCut = false;     ///< There may be more of the text than is shown.
    bool m_inColumns = false; ///< Behind group 75, where 50 is a height.
};

/// How the columns of a text are stored, in its own groups or in an embedded object.
struct Columns {
    enum Type { none, fixed, dynamic };
    std::int64_t type = none;
    std::int64_t count = 0;
    bool autoHeight = false;
    double width = 0.0;
    double gap = 0.0;
    double height = 0.0;
    std::vector<double> heights;

    void applyTo(MText &text) const
    {
        if (type != fixed && type != dynamic)
            return;
        constexpr std::int64_t kMost = 1000;
        if (width > 0.0)
            text.wrapWidth = text.columnWidth = width;
        text.columnGap = std::max(gap, 0.0);
        text.columnHeights = heights;
        if (text.columnHeights.empty() && height > 0.0)
            text.columnHeights = {height};
        // As many as the text needs.
        const bool open = type == dynamic && autoHeight && !text.columnHeights.empty();
        text.columns = int(open ? kMost : std::clamp<std::int64_t>(count, 1, kMost));
    }
};

} // namespace

void MTextGroups::read(const resbuf &group)
{
    switch (group.restype) {
    case 1:
    case 3:
        m_text.coded += QStringView(group.text()).left(kMostShownCharacters - m_text.coded.size());
        m_isCut = m_isCut || m_text.coded.size() == kMostShownCharacters;
        break;
    case 7:
        m_style = group.text();
        break;
    case 10:
        m_text.position = group.point();
        break;
    case 11:
        m_direction = group.point().asVector().normal();
        m_rotation.reset();
        break;
    case 40:
        m_text.height = group.real();
        break;
    case 41:
        m_text.wrapWidth = std::max(group.real(), 0.0);
        break;
    case 44:
        m_text.spacingFactor = group.real() > 0.0 ? group.real() : 1.0;
        break;
    case 50:
        if (!m_inColumns) {
            m_rotation = radians(group.real());
        }
        break;
    case 71:
        m_text.attachment = int(std::clamp<std::int64_t>(group.integer(), 1, 9));
        break;
    case 72: {
        constexpr std::int64_t kTopToBottom = 3;
        m_text.vertical = group.integer() == kTopToBottom;
        break;
    }
    case 73:
        m_text.exactSpacing = group.integer() == 2;
        break;
    case 75:
        m_inColumns = true;
        break;
    case 210:
        if (!group.point().asVector().isZeroLength())
            m_text.normal = group.point().asVector().normal();
        break;
    default:
        break;
    }
}

/// The later of direction and rotation holds.
AcGeVector3d MTextGroups::direction() const
{
    if (!m_rotation)
        return m_direction.isZeroLength() ? acdbUnstatedTextDirection(m_text.normal) : m_direction;
    const AcGeVector3d right = AcGeMatrix3d::planeToWorld(m_text.normal) * AcGeVector3d::kXAxis;
    return right.rotateBy(*m_rotation, m_text.normal);
}

void MTextGroups::readMask()
{
    enum Flag { kFill = 1, kBackground = 2, kFrame = 16 };
    const resbuf *const flags = m_groups.find(90);
    if (!flags)
        return;
    m_text.hasFrame = flags->integer() & kFrame;
    const resbuf *const factor = m_groups.find(45);
    const double enlarged = factor && factor->real() >= 1.0 ? std::min(factor->real(), 100.0) : 1.5;
    if (flags->integer() & kFill)
        m_text.maskFactor = enlarged;
    if (flags->integer() & kBackground)
        return;
    if (const resbuf *const rgb = m_groups.find(421))
        m_text.maskColor = AcCmEntityColor::fromRgb(std::uint32_t(rgb->integer()));
    else if (const resbuf *const index = m_groups.find(63))
        m_text.maskColor =
            AcCmEntityColor::fromIndex(int(std::clamp<std::int64_t>(index->integer(), 0, 256)));
}

void MTextGroups::readColumns()
{
    Columns columns;
    for (const resbuf &group : m_groups) {
        if (group.restype == 75)
            columns.type = group.integer();
        else if (group.restype == 76)
            columns.count = group.integer();
        else if (group.restype == 79)
            columns.autoHeight = group.integer() != 0;
        else if (group.restype == 48)
            columns.width = group.real();
        else if (group.restype == 49)
            columns.gap = group.real();
        else if (group.restype == 46)
            columns.height = group.real();
        else if (group.restype == 50 && columns.type != Columns::none)
            columns.heights.push_back(group.real());
    }
    columns.applyTo(m_text);
}

/// Newer files keep the columns in an embedded object.
static void readEmbeddedColumns(GroupSpan groups, MText &text)
{
    Columns columns;
    for (const resbuf &group : groups) {
        if (group.restype == 71)
            columns.type = group.integer();
        else if (group.restype == 72)
            columns.count = group.integer();
        else if (group.restype == 73)
            columns.autoHeight = group.integer() != 0;
        else if (group.restype == 44)
            columns.width = group.real();
        else if (group.restype == 45)
            columns.gap = group.real();
        else if (group.restype == 41)
            columns.height = group.real();
        else if (group.restype == 46)
            columns.heights.push_back(group.real());
    }
    columns.applyTo(text);
}

std::optional<MText> embeddedMText(const AcDbEntity &entity)
{
    const GroupSpan groups = embeddedGroups(entity);
    if (groups.empty())
        return std::nullopt;
    MText text = MTextGroups(OwnGroups(groups), entity.database()).text();
    if (text.coded.isEmpty())
        return std::nullopt;
    return text;
}

void drawMText(const AcDbEntity &entity, AcGiGeometry &sink)
{
    MTextGroups read(OwnGroups(entity, u"AcDbMText"), entity.database());
    if (read.isCut())
        noteCutText(entity, sink);
    MText &text = read.text();
    if (const std::optional<double> width = columnWidthOf(entity))
        text.wrapWidth = *width;
    readEmbeddedColumns(embeddedGroups(entity), text);
    drawMText(text, sink);
}

} // namespace acgi
