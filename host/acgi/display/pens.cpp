#include "host/acgi/display/pens.h"

#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbxref.h"
#include "host/acgi/display/display_list.h"
#include "host/acgi/index_color.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace acgi
{

// Tables of the drawing --------------------------------------------------------------------------

/// Fonts are asked on the main thread only; the threads that paint find the glyphs ready.
static void layOutTexts(Linetype &linetype)
{
    for (PatternElement &element : linetype.elements) {
        if (element.text && !element.text->text.isEmpty())
            element.text->style.font().layOut(element.text->text, element.text->glyphs);
    }
}

/// Generous: texts and shapes may be turned any way.
static double reachOf(const Linetype &linetype)
{
    double reach = 0.0;
    for (const PatternElement &element : linetype.elements) {
        if (!element.text)
            continue;
        const PatternText &text = *element.text;
        const double height = text.scale * std::max(1.0, text.style.textSize());
        const double length = 4.0 + double(text.text.size()) * text.style.xScale();
        reach = std::max(reach, std::abs(text.xOffset) + std::abs(text.yOffset) + std::abs(height) * length);
    }
    return reach;
}

DrawingTables::DrawingTables(AcDbDatabase &database) : m_database(database)
{
    m_database.addReactor(this);
}

DrawingTables::~DrawingTables()
{
    m_database.removeReactor(this);
}

// Of a hundred thousand layers few change at a time. Linetypes are few, and layers name them.
void DrawingTables::noteChange(const AcDbObject &object)
{
    if (object.objectId().isNull() || object.objectId().isEntity())
        return;
    const QByteArray kind = object.dxfName();
    if (kind == "LAYER")
        m_changedLayers.push_back(object.objectId());
    else if (kind == "LTYPE" || kind == "STYLE")
        m_isRead = false;
}

void DrawingTables::refresh()
{
    if (!std::exchange(m_isRead, true))
        readAll();
    if (!std::exchange(m_areVariablesRead, true))
        readVariables();
    for (const AcDbObjectId layer : m_changedLayers) {
        m_layers.erase(layer);
        readLayer(layer);
    }
    if (!m_changedLayers.empty())
        m_layerZero = m_database.tableRecord(SymbolTable::layer, QStringLiteral("0"));
    m_changedLayers.clear();
}

void DrawingTables::readAll()
{
    m_changedLayers.clear();
    m_layers.clear();
    m_linetypes.clear();
    m_linetypeReach = 0.0;
    readTables(m_database);
    m_layerZero = m_database.tableRecord(SymbolTable::layer, QStringLiteral("0"));
    AcDbXrefs &xrefs = m_database.xrefs();
    for (const std::vector<AcDbXref> &shown : {xrefs.all(), xrefs.nested()}) {
        for (const AcDbXref &xref : shown) {
            if (xref.database)
                readTables(*xref.database);
        }
    }
}

void DrawingTables::readTables(const AcDbDatabase &database)
{
    for (const std::uint32_t index : database.tableRecords(SymbolTable::layer))
        readLayer(AcDbObjectId(database.stub(index)));
    for (const std::uint32_t index : database.tableRecords(SymbolTable::linetype)) {
        const AcDbObjectId record(database.stub(index));
        if (!record.isValid())
            continue;
        Linetype linetype = readLinetype(record);
        if (linetype.isContinuous())
            continue;
        layOutTexts(linetype);
        m_linetypeReach = std::max(m_linetypeReach, reachOf(linetype));
        m_linetypes.emplace(record, std::move(linetype));
    }
}

void DrawingTables::readVariables()
{
    const double scale = m_database.headerReal("$LTSCALE", 1.0);
    m_linetypeScale = scale > 0.0 ? scale : 1.0;
    m_scalesOnSheets = m_database.headerInteger("$PSLTSCALE", 1) != 0;
    m_defaultLineWeight = int(std::clamp<std::int64_t>(m_database.headerInteger("$LWDEFAULT", 25), 0, 211));
}

/// Layers keep their transparency in extended data, as entities do in group 440.
static std::uint8_t layerAlpha(const AcDbObject &record)
{
    const ResbufList data = record.xData(QStringLiteral("AcCmTransparency"));
    const auto value = std::ranges::find(data, 1071, &resbuf::restype);
    const bool isStated = value != data.end() && (value->integer() >> 24 & 0xFF) == 2;
    return isStated ? std::uint8_t(value->integer() & 0xFF) : std::uint8_t(255);
}

void DrawingTables::readLayer(AcDbObjectId id)
{
    const AcDbObjectPointer<AcDbLayerTableRecord> record(id, AcDb::kForRead);
    if (!record)
        return;
    Layer layer;
    layer.isOff = record->isOff();
    layer.isFrozen = record->isFrozen();
    layer.isPlottable = record->isPlottable();
    const ResbufList &groups = record->groups();
    if (const resbuf *const rgb = findGroup(groups, 420))
        layer.color = AcCmEntityColor::fromRgb(std::uint32_t(rgb->integer()));
    else if (const int index = std::abs(record->colorIndex()); index >= 1 && index <= 255)
        layer.color = AcCmEntityColor::fromIndex(index);
    layer.linetype = id.database()->tableRecord(SymbolTable::linetype, record->linetype());
    if (const resbuf *const weight = findGroup(groups, 370))
        layer.lineWeight = int(std::clamp<std::int64_t>(weight->integer(), -3, 211));
    layer.alpha = layerAlpha(*record);
    m_layers.insert_or_assign(id, layer);
}

const Layer &DrawingTables::layer(AcDbObjectId record) const
{
    const auto found = m_layers.find(record.isNull() ? m_layerZero : record);
    return found == m_layers.end() ? m_plain : found->second;
}

const Linetype *DrawingTables::linetype(AcDbObjectId record) const
{
    const auto found = m_linetypes.find(record);
    return found == m_linetypes.end() ? nullptr : &found->second;
}

// Pens -------------------------------------------------------------------------------------------

Pens::Pens(const DrawingTables &tables, const PaintOptions &options, const std::vector<AcDbObjectId> &frozen)
    : m_tables(tables), m_options(options), m_frozen(frozen),
      m_background(options.background.rgb() | 0xFF000000u),
      m_foreground(qGray(m_background) < 128 ? 0xFFFFFFFFu : 0xFF000000u)
{
    std::ranges::sort(m_frozen);
}

bool Pens::isFrozenHere(AcDbObjectId layer) const
{
    return std::ranges::binary_search(m_frozen, layer);
}

QRgb Pens::color(const AcCmEntityColor &color) const
{
    if (color.colorMethod() == AcCmEntityColor::kBackground)
        return m_background;
    if (m_options.monochrome || color.colorIndex() == 7)
        return m_foreground;
    return color.colorMethod() == AcCmEntityColor::kByColor ? color.rgb() | 0xFF000000u
                                                            : indexColor(color.colorIndex());
}

float Pens::width(int hundredths, bool always) const
{
    if (!m_options.lineWeights && !always)
        return 0.0F;
    const int weight = hundredths < 0 ? m_tables.defaultLineWeight() : hundredths;
    return float(weight / 100.0 * m_options.pixelsPerMillimetre);
}

Pen Pens::pen(const Traits &traits, const Pen *shower) const
{
    Pen pen;
    const bool isZero = traits.layer.isNull() || traits.layer == m_tables.layerZero();
    pen.layer = isZero && shower ? shower->layer : isZero ? m_tables.layerZero() : traits.layer;
    const Layer &layer = m_tables.layer(pen.layer);
    pen.isFrozen = layer.isFrozen || isFrozenHere(pen.layer) || (shower && shower->isFrozen);
    pen.isShown = !pen.isFrozen && !layer.isOff && (layer.isPlottable || !m_options.plotting);

    const bool colorOfShower = traits.color.colorMethod() == AcCmEntityColor::kByBlock;
    const AcCmEntityColor stated =
        traits.color.colorMethod() == AcCmEntityColor::kByLayer ? layer.color : traits.color;
    pen.color = !colorOfShower ? color(stated) : shower ? shower->color : m_foreground;
    const std::uint8_t alpha = traits.alphaBy == Stated::itself    ? traits.alpha
                               : traits.alphaBy == Stated::byLayer ? layer.alpha
                               : shower                            ? std::uint8_t(qAlpha(shower->color))
                                                                   : std::uint8_t(255);
    pen.color = (pen.color & 0x00FFFFFFu) | QRgb(alpha) << 24;
    if (m_options.highlight.isValid()) {
        pen.color = m_options.highlight.rgba();
        // What covers has nothing to show in another colour.
        pen.isShown = pen.isShown && traits.color.colorMethod() != AcCmEntityColor::kBackground;
    }

    if (traits.lineWeight == -2)
        pen.width = shower ? shower->width : width(-3, traits.alwaysWide);
    else
        pen.width = width(traits.lineWeight == -1 ? layer.lineWeight : traits.lineWeight, traits.alwaysWide);

    if (traits.linetypeBy == Stated::byBlock)
        pen.linetype = shower ? shower->linetype : nullptr;
    else
        pen.linetype =
            m_tables.linetype(traits.linetypeBy == Stated::byLayer ? layer.linetype : traits.linetype);
    pen.linetypeScale = traits.linetypeScale * m_tables.linetypeScale();
    return pen;
}

void Pens::add(const std::deque<Traits> &traits)
{
    add(traits, m_known);
}

void Pens::addOwn(const std::deque<Traits> &traits)
{
    add(traits, m_own);
}

void Pens::add(const std::deque<Traits> &traits, std::vector<Known> &known)
{
    known.reserve(traits.size());
    for (std::size_t i = known.size(); i < traits.size(); ++i) {
        const Traits &stated = traits[i];
        const bool depends = stated.layer.isNull() || stated.layer == m_tables.layerZero() ||
                             stated.color.colorMethod() == AcCmEntityColor::kByBlock ||
                             stated.lineWeight == -2 || stated.linetypeBy == Stated::byBlock ||
                             stated.alphaBy == Stated::byBlock;
        known.push_back({pen(stated, nullptr), &stated, depends});
        m_widest = std::max(m_widest, known.back().pen.width);
        m_largestScale = std::max(m_largestScale, known.back().pen.linetypeScale);
    }
}

double Pens::margin(double pixelsPerUnit) const
{
    // Antialiasing takes a pixel; what sticks out very far is not worth looking at every list.
    constexpr double kLeast = 3.0;
    constexpr double kMost = 400.0;
    const double reach = m_tables.linetypeReach() * m_largestScale * pixelsPerUnit;
    return std::clamp(std::max(double(m_widest) / 2.0 + 2.0, reach), kLeast, kMost);
}

const Pen &Pens::pen(std::uint32_t number, const Pen *shower, Pen &scratch) const
{
    const Known &known = number < ListTables::kOwn ? m_known[number] : m_own[number - ListTables::kOwn];
    if (!shower || (!known.dependsOnShower && !shower->isFrozen))
        return known.pen;
    return scratch = pen(*known.traits, shower);
}

} // namespace acgi
