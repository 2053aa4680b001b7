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

static void drawParagraphs(const EntityGroups &groups, const std::vector<MTextLine> &lines,
                           AcGiGeometry &sink)
{
    const AcGeVector3d normal = groups.normal().normal();
    const AcGeVector3d along = directionOf(groups, normal);
    const AcGeVector3d up = normal.crossProduct(along).normal();
    constexpr double kLineDistance = 5.0 / 3.0;
    const double spacing = groups.real(44, 1.0) * kLineDistance;
    double widest = 0.0;
    double total = 0.0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        widest = std::max(widest, lines[i].width);
        total += i == 0 ? lines[i].height : lines[i].height * spacing;
    }
    // Attachment points run in rows from the upper left: 1 top left ... 9 bottom right.
    const std::int64_t attachment = std::clamp<std::int64_t>(groups.integer(71, 1), 1, 9) - 1;
    const double across = double(attachment % 3) / 2.0;
    double below = total * double(attachment / 3) / 2.0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        below -= i == 0 ? lines[i].height : lines[i].height * spacing;
        if (lines[i].text.isEmpty())
            continue;
        AcGiTextLine line;
        line.text = lines[i].text;
        line.direction = along * lines[i].height;
        line.up = up * lines[i].height;
        line.width = lines[i].width / lines[i].height;
        line.position = groups.point(10) - along * (lines[i].width * across) + up * below;
        sink.text(line);
    }
}

void drawMText(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const EntityGroups groups(entity, u"AcDbMText");
    const double height = groups.real(40, 1.0);
    if (height > 0.0)
        drawParagraphs(groups, layOutMText(wholeText(groups), height, 1.0, groups.real(41)), sink);
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
