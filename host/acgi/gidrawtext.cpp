// Drawing of text, attributes, multi-line text and tolerances.
#include "host/acgi/gikinds.h"
#include "host/acgi/giread.h"
#include "host/acgi/gitextlayout.h"

#include <algorithm>
#include <cmath>

namespace acgi
{

namespace
{

enum Horizontal { kLeft = 0, kCentre = 1, kRight = 2, kAligned = 3, kMiddle = 4, kFit = 5 };
enum Vertical { kBaseline = 0, kBottom = 1, kCentred = 2, kTop = 3 };

} // namespace

/// How far the box of the text stands from its alignment point, as shares of its width and height.
static AcGePoint2d alignment(std::int64_t horizontal, std::int64_t vertical)
{
    static constexpr double kAcross[] = {0.0, 0.5, 1.0, 0.0, 0.5, 0.0};
    const double across = horizontal >= 0 && horizontal <= kFit ? kAcross[horizontal] : 0.0;
    if (horizontal == kMiddle || vertical == kCentred)
        return {across, 0.5};
    return {across, vertical == kTop ? 1.0 : 0.0};
}

static void drawLineOfText(const EntityGroups &groups, const QString &coded, int verticalCode,
                           AcGiGeometry &sink)
{
    AcGiTextLine line;
    line.text = plainText(coded);
    line.width = textWidth(line.text);
    if (line.text.isEmpty())
        return;
    const std::int64_t horizontal = groups.integer(72);
    const std::int64_t vertical = groups.integer(verticalCode);
    const AcGePoint3d first = groups.point(10);
    const AcGePoint3d second = groups.point(11, first);
    double height = groups.real(40);
    double widthFactor = groups.real(41, 1.0);
    double angle = radians(groups.real(50));
    const std::int64_t generation = groups.integer(71);
    const bool between = (horizontal == kAligned || horizontal == kFit) && !first.isEqualTo(second);
    if (between) {
        const double length = first.distanceTo(second);
        // Backward text runs against its angle.
        angle = generation & 2 ? directionAngle(second, first) : directionAngle(first, second);
        if (horizontal == kAligned)
            height = length / (line.width * widthFactor);
        else
            widthFactor = length / (line.width * height);
    }
    AcGeVector3d along(std::cos(angle), std::sin(angle), 0.0);
    AcGeVector3d up(-along.y, along.x, 0.0);
    if (generation & 2)
        along = -along;
    if (generation & 4)
        up = -up;
    const double lean = std::tan(std::clamp(radians(groups.real(51)), -1.5, 1.5));
    line.direction = along * (height * widthFactor);
    line.up = (up + along * lean) * height;
    const bool aligned = !between && (horizontal != kLeft || vertical != kBaseline);
    const AcGePoint2d offset = between ? AcGePoint2d() : alignment(horizontal, vertical);
    line.position =
        (aligned ? second : first) - line.direction * (line.width * offset.x) - up * (height * offset.y);
    const AcGeVector3d normal = groups.normal();
    if (!isZAxis(normal)) {
        const AcGeMatrix3d plane = AcGeMatrix3d::planeToWorld(normal);
        line.position.transformBy(plane);
        line.direction.transformBy(plane);
        line.up.transformBy(plane);
    }
    sink.text(line);
}

void drawText(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const EntityGroups groups(entity);
    drawLineOfText(groups, groups.text(1), 73, sink);
}

static constexpr std::int64_t kInvisibleAttribute = 1;

void drawAttribute(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const EntityGroups groups(entity);
    if (!(groups.integer(70) & kInvisibleAttribute))
        drawLineOfText(groups, groups.text(1), 74, sink);
}

// In its own drawing a definition shows its tag; inside an insert only constant ones show, with their text.
void drawAttributeDefinition(const AcDbEntity &entity, AcGiGeometry &sink)
{
    constexpr std::int64_t kConstant = 2;
    const EntityGroups groups(entity);
    const std::int64_t flags = groups.integer(70);
    if (!sink.insideBlock())
        drawLineOfText(groups, groups.text(2), 74, sink);
    else if (flags & kConstant && !(flags & kInvisibleAttribute))
        drawLineOfText(groups, groups.text(1), 74, sink);
}

static QString wholeText(const EntityGroups &groups)
{
    QString whole;
    for (const resbuf &group : groups) {
        if (group.restype == 3 || group.restype == 1)
            whole += group.text();
    }
    return whole;
}

/// The later of direction (11) and rotation (50) holds.
static AcGeVector3d directionOf(const EntityGroups &groups, const AcGeVector3d &normal)
{
    AcGeVector3d along = AcGeMatrix3d::planeToWorld(normal) * AcGeVector3d::kXAxis;
    const AcGeVector3d right = along;
    for (const resbuf &group : groups) {
        if (group.restype == 11 && !group.point().asVector().isZeroLength())
            along = group.point().asVector().normal();
        else if (group.restype == 50)
            along = right.rotateBy(radians(group.real()), normal);
        else if (group.restype == 75)
            break; // Columns follow; their 50 are heights.
    }
    return along;
}

namespace
{

/// Where the lines of a multi-line text hang.
struct Hanging {
    AcGePoint3d position;
    AcGeVector3d along;
    AcGeVector3d normal;
    std::int64_t attachment = 1; ///< In rows from the upper left: 1 top left ... 9 bottom right.
    double spacingFactor = 1.0;
};

} // namespace

static void drawParagraphs(const Hanging &hanging, const std::vector<MTextLine> &lines, AcGiGeometry &sink)
{
    const AcGeVector3d &along = hanging.along;
    const AcGeVector3d up = hanging.normal.crossProduct(along).normal();
    constexpr double kLineDistance = 5.0 / 3.0;
    const double spacing = hanging.spacingFactor * kLineDistance;
    double total = 0.0;
    for (std::size_t i = 0; i < lines.size(); ++i)
        total += i == 0 ? lines[i].height : lines[i].height * spacing;
    const std::int64_t attachment = std::clamp<std::int64_t>(hanging.attachment, 1, 9) - 1;
    const double across = double(attachment % 3) / 2.0;
    const std::int64_t row = attachment / 3; // 0 top, 1 middle, 2 bottom
    double below = total * double(row) / 2.0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        below -= i == 0 ? lines[i].height : lines[i].height * spacing;
        if (lines[i].text.isEmpty())
            continue;
        AcGiTextLine line;
        line.text = lines[i].text;
        line.direction = along * lines[i].height;
        line.up = up * lines[i].height;
        line.width = lines[i].width / lines[i].height;
        line.position = hanging.position - along * (lines[i].width * across) + up * below;
        sink.text(line);
    }
}

void drawMText(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const EntityGroups groups(entity, u"AcDbMText");
    const double height = groups.real(40, 1.0);
    if (!(height > 0.0))
        return;
    const AcGeVector3d normal = groups.normal().normal();
    drawParagraphs(
        {groups.point(10), directionOf(groups, normal), normal, groups.integer(71, 1), groups.real(44, 1.0)},
        layOutMText(wholeText(groups), height, 1.0, groups.real(41)), sink);
}

namespace
{

/// Reads a MULTILEADER, which nests its content, leaders and their lines in braces, and draws it.
class MultileaderReader
{
public:
    MultileaderReader(const EntityGroups &groups, AcGiGeometry &sink) : m_sink(sink)
    {
        static constexpr QStringView kOpening[] = {u"CONTEXT_DATA{", u"LEADER{", u"LEADER_LINE{"};
        for (const resbuf &group : groups) {
            if (m_depth < 3 && group.restype == 300 + 2 * m_depth && group.text() == kOpening[m_depth])
                ++m_depth;
            else if (m_depth > 0 && group.restype == 299 + 2 * m_depth && group.text() == u"}")
                close();
            else if (m_depth == 1)
                readContent(group);
            else if (m_depth == 2)
                readLeader(group);
            else if (m_depth == 3 && group.restype == 10)
                m_line.push_back(group.point());
        }
        if (m_height > 0.0 && !m_text.isEmpty())
            drawParagraphs(m_hanging, layOutMText(m_text, m_height, 1.0, m_wrapWidth), m_sink);
    }

private:
    void close()
    {
        if (m_depth-- != 3 || m_line.empty())
            return;
        m_line.push_back(m_landing);
        m_line.push_back(m_landing + m_dogleg * m_doglegLength);
        m_sink.polyline(std::uint32_t(m_line.size()), m_line.data());
        m_line.clear();
    }

    void readContent(const resbuf &group)
    {
        switch (group.restype) {
        case 304:
            m_text = group.text();
            break;
        case 11:
            m_hanging.normal = group.point().asVector().normal();
            break;
        case 12:
            m_hanging.position = group.point();
            break;
        case 13:
            m_hanging.along = group.point().asVector().normal();
            break;
        case 41:
            m_height = group.real();
            break;
        case 43:
            m_wrapWidth = group.real();
            break;
        case 45:
            m_hanging.spacingFactor = group.real() > 0.0 ? group.real() : 1.0;
            break;
        case 171:
            m_hanging.attachment = group.integer(); // Left, centre or right, always from the top.
            break;
        default:
            break;
        }
    }

    void readLeader(const resbuf &group)
    {
        if (group.restype == 10)
            m_landing = group.point();
        else if (group.restype == 11)
            m_dogleg = group.point().asVector();
        else if (group.restype == 40)
            m_doglegLength = group.real();
    }

    AcGiGeometry &m_sink;
    int m_depth = 0;
    QString m_text;
    Hanging m_hanging{{}, AcGeVector3d::kXAxis, AcGeVector3d::kZAxis};
    double m_height = 0.0;
    double m_wrapWidth = 0.0;
    AcGePoint3d m_landing;
    AcGeVector3d m_dogleg;
    double m_doglegLength = 0.0;
    std::vector<AcGePoint3d> m_line;
};

} // namespace

void drawMultileader(const AcDbEntity &entity, AcGiGeometry &sink)
{
    MultileaderReader(EntityGroups(entity), sink);
}

/// Text height of the entity's dimension style.
static double dimensionTextHeight(const AcDbEntity &entity, const QString &styleName)
{
    double height = 1.0;
    if (!entity.database())
        return height;
    const AcDbObjectId style = entity.database()->tableRecord(SymbolTable::dimStyle, styleName);
    AcDbObjectPointer<AcDbObject> record(style, AcDb::kForRead);
    const resbuf *const text = record ? findGroup(record->groups(), 140) : nullptr;
    const resbuf *const scale = record ? findGroup(record->groups(), 40) : nullptr;
    if (text && text->real() > 0.0)
        height = text->real();
    return scale && scale->real() > 0.0 ? height * scale->real() : height;
}

// Frames in rows, divided by %%v; each row is twice as high as its text.
void drawTolerance(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const EntityGroups groups(entity, u"AcDbFcf");
    const double height = dimensionTextHeight(entity, groups.text(3));
    QString content = groups.text(1);
    content.replace(QStringLiteral("%%v"), QStringLiteral(" "), Qt::CaseInsensitive);
    const std::vector<MTextLine> rows = layOutMText(content, height, 1.0, 0.0);
    const AcGeVector3d along = groups.vector(11, AcGeVector3d::kXAxis).normal();
    const AcGeVector3d up = groups.normal().normal().crossProduct(along);
    AcGePoint3d corner = groups.point(10) + up * height;
    for (const MTextLine &row : rows) {
        const double width = row.width + height;
        const AcGePoint3d frame[] = {corner, corner + along * width,
                                     corner + along * width - up * (2.0 * height),
                                     corner - up * (2.0 * height), corner};
        sink.polyline(5, frame);
        corner = corner - up * (2.0 * height);
    }
}

} // namespace acgi
