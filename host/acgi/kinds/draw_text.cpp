// Drawing of one-line text and attributes.
#include "host/acdb/owngroups.h"
#include "host/acgi/kinds/draw_mtext.h"
#include "host/acgi/kinds/draw_tools.h"
#include "host/acgi/kinds/kinds.h"
#include "host/acgi/text/text_layout.h"

#include <algorithm>
#include <cmath>

namespace acgi
{

namespace
{

enum Horizontal { kLeft = 0, kCentre = 1, kRight = 2, kAligned = 3, kMiddle = 4, kFit = 5 };
enum Vertical { kBaseline = 0, kBottom = 1, kCentred = 2, kTop = 3 };

/// A line of text in its own plane, before it is placed.
struct OneLine {
    QString text;
    std::vector<TextRule> rules;
    const Font *font = nullptr;
    double height = 0.0;
    double widthFactor = 1.0;
    double width = 0.0; ///< At height and width factor 1.
    AcGeVector3d along; ///< Length 1.
    AcGeVector3d up;    ///< Length 1, upright.
    double lean = 0.0;  ///< Tangent of the obliquing angle.
};

} // namespace

/// How far letters reach below the base line, where a capital letter is 1 high.
static constexpr double kDescent = 1.0 / 3.0;

/// How far the lower left end of the base line is from the alignment point, as shares of width and height.
static AcGePoint2d alignment(std::int64_t horizontal, std::int64_t vertical)
{
    static constexpr double kAcross[] = {0.0, 0.5, 1.0, 0.0, 0.5, 0.0};
    const double across = horizontal >= 0 && horizontal <= kFit ? kAcross[horizontal] : 0.0;
    if (horizontal == kMiddle)
        return {across, (1.0 - kDescent) / 2.0};
    static constexpr double kUp[] = {0.0, -kDescent, 0.5, 1.0};
    return {across, vertical >= 0 && vertical <= kTop ? kUp[vertical] : 0.0};
}

static TextLine placedLine(const OneLine &text, const QString &shown, double width)
{
    TextLine line;
    line.text = shown;
    line.font = text.font;
    line.width = width;
    line.direction = text.along * (text.height * text.widthFactor);
    line.up = (text.up + text.along * text.lean) * text.height;
    return line;
}

static void drawHorizontal(const OneLine &text, const AcGePoint3d &position, AcGiGeometry &sink)
{
    TextLine line = placedLine(text, text.text, text.width);
    line.position = position;
    sink.text(line);
    for (const TextRule &rule : text.rules) {
        const QStringView all = text.text;
        const double from = text.font->width(all.left(rule.from));
        const double to = from + text.font->width(all.mid(rule.from, rule.to - rule.from));
        const AcGePoint3d start = position + line.up * ruleHeight(rule.kind);
        const AcGePoint3d ends[] = {start + line.direction * from, start + line.direction * to};
        sink.polyline(2, ends);
    }
}

/// Characters below each other; `top` is the middle of the upper edge of the first one.
static void drawVertical(const OneLine &text, AcGePoint3d top, AcGiGeometry &sink)
{
    const QStringView all = text.text;
    for (qsizetype i = 0; i < all.size() && !sink.isDone();) {
        const qsizetype length = characterLength(all, i);
        const QString character = all.mid(i, length).toString();
        i += length;
        if (character != u" ") {
            TextLine line = placedLine(text, character, text.font->width(character));
            line.position = top - text.up * text.height - line.direction * (line.width / 2.0);
            sink.text(line);
        }
        top = top - text.up * (kVerticalAdvance * text.height);
    }
}

static void toPlane(OneLine &text, AcGePoint3d &position, const AcGeVector3d &normal)
{
    if (isZAxis(normal))
        return;
    const AcGeMatrix3d plane = AcGeMatrix3d::planeToWorld(normal);
    position.transformBy(plane);
    text.along.transformBy(plane);
    text.up.transformBy(plane);
}

static void drawLineOfText(const AcDbEntity &entity, const OwnGroups &groups, QString coded, int verticalCode,
                           AcGiGeometry &sink)
{
    if (coded.size() > kMostShownCharacters) {
        coded.truncate(kMostShownCharacters);
        noteCutText(entity, sink);
    }
    OneLine text;
    text.text = plainText(coded, text.rules);
    if (text.text.isEmpty())
        return;
    const AcGiTextStyle style =
        entity.database() ? namedTextStyle(*entity.database(), groups.text(7)) : AcGiTextStyle();
    text.font = &style.font();
    text.height = groups.real(40);
    if (!(text.height > 0.0))
        text.height = style.textSize();
    text.widthFactor = groups.real(41, 1.0);
    text.lean = std::tan(std::clamp(radians(groups.real(51)), -1.5, 1.5));
    text.width = text.font->width(text.text);
    const std::int64_t horizontal = groups.integer(72);
    const std::int64_t vertical = groups.integer(verticalCode);
    const AcGePoint3d first = groups.point(10);
    const AcGePoint3d second = groups.point(11, first);
    const std::int64_t generation = groups.integer(71);
    const bool between = (horizontal == kAligned || horizontal == kFit) && !first.isEqualTo(second);
    double angle = radians(groups.real(50));
    if (between && text.width > 0.0) {
        const double length = first.distanceTo(second);
        // Backward text runs against its angle.
        angle = generation & 2 ? directionAngle(second, first) : directionAngle(first, second);
        if (horizontal == kAligned)
            text.height = length / (text.width * text.widthFactor);
        else
            text.widthFactor = length / (text.width * text.height);
    }
    if (!std::isfinite(text.height) || !std::isfinite(text.widthFactor))
        return;
    text.along = AcGeVector3d(std::cos(angle), std::sin(angle), 0.0);
    text.up = AcGeVector3d(-text.along.y, text.along.x, 0.0);
    if (generation & 2)
        text.along = -text.along;
    if (generation & 4)
        text.up = -text.up;
    const bool aligned = !between && (horizontal != kLeft || vertical != kBaseline);
    const AcGePoint2d offset = between ? AcGePoint2d() : alignment(horizontal, vertical);
    AcGePoint3d position = aligned ? second : first;
    if (style.isVertical()) {
        const double length = double(characterCount(text.text)) * kVerticalAdvance * text.height;
        position = position + text.up * (length * offset.x);
        toPlane(text, position, groups.normal());
        drawVertical(text, position, sink);
        return;
    }
    position = position - text.along * (text.height * text.widthFactor * text.width * offset.x) -
               text.up * (text.height * offset.y);
    toPlane(text, position, groups.normal());
    drawHorizontal(text, position, sink);
}

void drawText(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const OwnGroups groups(entity);
    drawLineOfText(entity, groups, groups.text(1), 73, sink);
}

static constexpr std::int64_t kInvisibleAttribute = 1;

/// The value of an attribute: in one line, or as the multi-line text that comes along.
static void drawValue(const AcDbEntity &entity, const OwnGroups &groups, AcGiGeometry &sink)
{
    if (const std::optional<MText> text = embeddedMText(entity))
        drawMText(*text, sink);
    else
        drawLineOfText(entity, groups, groups.text(1), 74, sink);
}

void drawAttribute(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const OwnGroups groups(entity);
    if (!(groups.integer(70) & kInvisibleAttribute))
        drawValue(entity, groups, sink);
}

// In its own drawing a definition shows its tag; inside an insert only constant ones show, with their text.
void drawAttributeDefinition(const AcDbEntity &entity, AcGiGeometry &sink)
{
    constexpr std::int64_t kConstant = 2;
    const OwnGroups groups(entity);
    const std::int64_t flags = groups.integer(70);
    if (!sink.insideBlock())
        drawLineOfText(entity, groups, groups.text(2), 74, sink);
    else if (flags & kConstant && !(flags & kInvisibleAttribute))
        drawValue(entity, groups, sink);
}

} // namespace acgi
