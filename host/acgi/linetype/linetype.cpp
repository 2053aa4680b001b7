#include "host/acgi/linetype/linetype.h"

#include "host/acdb/dbsymtb.h"
#include "host/acgi/entity_groups.h"

#include <algorithm>
#include <cmath>

namespace acgi
{

namespace
{

constexpr std::size_t kMostElements = 1000;
enum ElementFlag : std::int64_t { kUpright = 1, kText = 2, kShape = 4 };

/// Shape files are styles without a name, so those go by their record.
AcGiTextStyle styleOf(const AcDbDatabase &database, AcDbHandle handle)
{
    const AcDbObjectPointer<AcDbSymbolTableRecord> record(database.getAcDbObjectId(handle), AcDb::kForRead);
    constexpr int kShapeFile = 1;
    if (!record || !(record->flags() & kShapeFile))
        return namedTextStyle(database, record ? record->getName() : QString());
    AcGiTextStyle style;
    if (const resbuf *const file = findGroup(record->groups(), 3))
        style.setFileName(file->text());
    return style;
}

void readTextGroup(const resbuf &group, PatternText &text, const AcDbDatabase &database)
{
    switch (group.restype) {
    case 75:
        text.shapeNumber = int(group.integer());
        break;
    case 340:
        text.style = styleOf(database, group.handle());
        break;
    case 46:
        text.scale = group.real();
        break;
    case 50:
        text.rotation = radians(group.real());
        break;
    case 44:
        text.xOffset = group.real();
        break;
    case 45:
        text.yOffset = group.real();
        break;
    case 9:
        text.text = group.text();
        break;
    default:
        break;
    }
}

bool isFinite(const PatternElement &element)
{
    if (!std::isfinite(element.length))
        return false;
    const auto &text = element.text;
    return !text || (std::isfinite(text->scale) && std::isfinite(text->rotation) &&
                     std::isfinite(text->xOffset) && std::isfinite(text->yOffset));
}

/// Something of the pattern shows.
bool shows(const PatternElement &element)
{
    return element.length >= 0.0 || element.text.has_value();
}

std::vector<PatternElement> readElements(const ResbufList &groups, const AcDbDatabase &database)
{
    std::vector<PatternElement> elements;
    for (std::size_t i = 0; i < extendedDataBegin(groups) && elements.size() <= kMostElements; ++i) {
        const resbuf &group = groups[i];
        if (group.restype == 49) {
            elements.push_back({group.real(), std::nullopt});
        } else if (elements.empty()) {
            continue;
        } else if (group.restype == 74) {
            const std::int64_t flags = group.integer();
            if (flags & (kText | kShape))
                elements.back().text.emplace().upright = flags & kUpright;
        } else if (elements.back().text) {
            readTextGroup(group, *elements.back().text, database);
        }
    }
    return elements;
}

} // namespace

Linetype readLinetype(AcDbObjectId record)
{
    const AcDbObjectPointer<AcDbSymbolTableRecord> opened(record, AcDb::kForRead);
    if (!opened || opened->dxfName() != "LTYPE")
        return {};
    Linetype linetype;
    linetype.elements = readElements(opened->groups(), *record.database());
    auto &elements = linetype.elements;
    for (const PatternElement &element : elements)
        linetype.length += std::abs(element.length);
    if (elements.size() > kMostElements || !std::ranges::all_of(elements, isFinite) ||
        std::ranges::none_of(elements, shows) || !std::isfinite(linetype.length) || linetype.isContinuous())
        return {};
    return linetype;
}

// The shapes of the common linetype file ------------------------------------------------------------

static std::vector<QPointF> arcPoints(QPointF centre, double radius, double from, double sweep)
{
    constexpr int kSteps = 16;
    std::vector<QPointF> points;
    for (int i = 0; i <= kSteps; ++i) {
        const double t = from + sweep * i / kSteps;
        points.push_back(centre + radius * QPointF(std::cos(t), std::sin(t)));
    }
    return points;
}

std::vector<std::vector<QPointF>> patternShape(const PatternText &text)
{
    const QString &file = text.style.fontRequest().fontFile;
    const QString base = file.mid(std::max(file.lastIndexOf(u'/'), file.lastIndexOf(u'\\')) + 1);
    const auto isFile = [&](QLatin1String name) { return base.compare(name, Qt::CaseInsensitive) == 0; };
    if (!text.text.isEmpty() ||
        (!isFile(QLatin1String("ltypeshp.shx")) && !isFile(QLatin1String("ltypeshp"))))
        return {};
    switch (text.shapeNumber) {
    case 130: // TRACK1: a sleeper across the line.
        return {{{0, 1}, {0, -1}}};
    case 131: // ZIG
        return {{{0, 0}, {1, 1}, {2, 0}}};
    case 132: // BOX
        return {{{0, 0}, {0, 1}, {2, 1}, {2, -1}, {0, -1}, {0, 0}}};
    case 133: // CIRC1
        return {arcPoints({1, 0}, 1, kGePi, 2 * kGePi)};
    case 134: { // BAT: one loop of insulation.
        std::vector<QPointF> loop = arcPoints({1, 2}, 2, kGePi, -kGePi);
        loop.insert(loop.begin(), {0, 0});
        loop.push_back({2, 0});
        return {loop};
    }
    default:
        return {};
    }
}

} // namespace acgi
