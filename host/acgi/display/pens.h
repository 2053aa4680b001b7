// Pens: what stated traits come to for one picture, after layers, blocks, the background and the drawing's
// settings were asked.
#pragma once

#include "host/acdb/dbreactor.h"
#include "host/acgi/display/display.h"
#include "host/acgi/linetype/linetype.h"
#include "host/acgi/traits.h"

#include <deque>
#include <map>
#include <unordered_map>
#include <vector>

namespace acgi
{

/// A layer as far as it matters for pictures.
struct Layer {
    AcCmEntityColor color = AcCmEntityColor::fromIndex(7);
    AcDbObjectId linetype; ///< Null is continuous.
    int lineWeight = -3;
    std::uint8_t alpha = 255;
    bool isOff = false;
    bool isFrozen = false;
    bool isPlottable = true;
};

/// Layers, linetypes and variables of a drawing; of what has changed it hears.
class DrawingTables : private AcDbDatabaseReactor
{
public:
    explicit DrawingTables(AcDbDatabase &database);
    ~DrawingTables() override;
    DrawingTables(const DrawingTables &) = delete;
    DrawingTables &operator=(const DrawingTables &) = delete;
    bool isFresh() const { return m_isRead && m_areVariablesRead && m_changedLayers.empty(); }
    /// Reads what has changed.
    void refresh();
    /// Layer 0 for the null id; a layer with nothing special when the drawing has none.
    const Layer &layer(AcDbObjectId record) const;
    AcDbObjectId layerZero() const { return m_layerZero; }
    /// Null for continuous ones.
    const Linetype *linetype(AcDbObjectId record) const;
    double linetypeScale() const { return m_linetypeScale; } ///< $LTSCALE
    /// $PSLTSCALE: viewports of a sheet show linetypes at the sheet's scale, not at their own.
    bool scalesLinetypesOnSheets() const { return m_scalesOnSheets; }
    int defaultLineWeight() const { return m_defaultLineWeight; }
    /// How far the texts and shapes of linetypes reach from their line at most, pattern units.
    double linetypeReach() const { return m_linetypeReach; }

private:
    void objectAppended(const AcDbDatabase *, const AcDbObject *object) override { noteChange(*object); }
    void objectUnAppended(const AcDbDatabase *, const AcDbObject *object) override { noteChange(*object); }
    void objectReAppended(const AcDbDatabase *, const AcDbObject *object) override { noteChange(*object); }
    void objectModified(const AcDbDatabase *, const AcDbObject *object) override { noteChange(*object); }
    void objectErased(const AcDbDatabase *, const AcDbObject *object, bool) override { noteChange(*object); }
    void headerSysVarChanged(const AcDbDatabase *, const char *) override { m_areVariablesRead = false; }
    void xrefsChanged(const AcDbDatabase *) override { m_isRead = false; }
    void noteChange(const AcDbObject &object);
    void readAll();
    void readTables(const AcDbDatabase &database);
    void readVariables();
    void readLayer(AcDbObjectId record);

    AcDbDatabase &m_database;
    bool m_isRead = false;
    bool m_areVariablesRead = false;
    std::vector<AcDbObjectId> m_changedLayers;
    AcDbObjectId m_layerZero;
    Layer m_plain;
    std::unordered_map<AcDbObjectId, Layer> m_layers;
    std::unordered_map<AcDbObjectId, Linetype> m_linetypes;
    double m_linetypeScale = 1.0;
    double m_linetypeReach = 0.0;
    bool m_scalesOnSheets = true;
    int m_defaultLineWeight = 25;
};

struct Pen {
    AcDbObjectId layer;
    QRgb color = 0xFFFFFFFF;            ///< With its transparency, not premultiplied.
    float width = 0.0F;                 ///< Pixels; 0 is the thinnest line.
    const Linetype *linetype = nullptr; ///< Null is continuous.
    double linetypeScale = 1.0;         ///< Drawing units to a pattern unit.
    bool isShown = true;
    bool isFrozen = false; ///< Then nothing that the entity shows is shown, whatever its layer.
};

/// Resolves traits for one picture. Reading from several threads is fine.
class Pens
{
public:
    /// All must outlive this. `frozen`: layers that the viewport freezes.
    Pens(const DrawingTables &tables, const PaintOptions &options,
         const std::vector<AcDbObjectId> &frozen = {});
    /// Prepares the traits behind those that are known already.
    void add(const std::deque<Traits> &traits);

    /// What stands by block or on layer 0 looks as `shower`, the pen of the reference that shows the block.
    Pen pen(const Traits &traits, const Pen *shower) const;
    /// The same for the lists of entities that stand in no drawing.
    void addOwn(const std::deque<Traits> &traits);
    /// The pen of the traits of that number.
    const Pen &pen(std::uint32_t number, const Pen *shower, Pen &scratch) const;
    /// How far what is drawn reaches out of the boxes of its lists at most, pixels.
    double margin(double pixelsPerUnit) const;
    bool scalesLinetypesOnSheets() const { return m_tables.scalesLinetypesOnSheets(); }
    QRgb background() const { return m_background; }

private:
    QRgb color(const AcCmEntityColor &color) const;
    float width(int hundredths, bool always) const;
    bool isFrozenHere(AcDbObjectId layer) const;

    struct Known {
        Pen pen;
        const Traits *traits;
        bool dependsOnShower;
    };
    void add(const std::deque<Traits> &traits, std::vector<Known> &known);

    const DrawingTables &m_tables;
    const PaintOptions &m_options;
    std::vector<AcDbObjectId> m_frozen;
    QRgb m_background;
    QRgb m_foreground;
    std::vector<Known> m_known;
    std::vector<Known> m_own;
    float m_widest = 0.0F;
    double m_largestScale = 0.0; ///< Of linetypes.
};

} // namespace acgi
