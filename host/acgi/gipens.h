// Pens: what stated traits come to for one picture, after layers, blocks, the background and the drawing's
// settings were asked.
#pragma once

#include "host/acgi/gidisplay.h"
#include "host/acgi/gilinetype.h"
#include "host/acgi/gitraits.h"

#include <deque>
#include <map>
#include <unordered_map>

/// A layer as far as it matters for pictures.
struct AcGiLayer {
    AcCmEntityColor color = AcCmEntityColor::fromIndex(7);
    AcDbObjectId linetype; ///< Null is continuous.
    int lineWeight = -3;
    std::uint8_t alpha = 255;
    bool isOff = false;
    bool isFrozen = false;
    bool isPlottable = true;
};

/// Layers, linetypes and variables of a drawing, read anew when the drawing has changed.
class AcGiDrawingTables
{
public:
    explicit AcGiDrawingTables(const AcDbDatabase &database) : m_database(database) {}
    bool isFresh() const { return m_changeCount == m_database.changeCount(); }
    void refresh();
    /// Layer 0 for the null id; a layer with nothing special when the drawing has none.
    const AcGiLayer &layer(AcDbObjectId record) const;
    AcDbObjectId layerZero() const { return m_layerZero; }
    /// Null for continuous ones.
    const AcGiLinetype *linetype(AcDbObjectId record) const;
    double linetypeScale() const { return m_linetypeScale; } ///< $LTSCALE
    /// $PSLTSCALE: viewports of a sheet show linetypes at the sheet's scale, not at their own.
    bool scalesLinetypesOnSheets() const { return m_scalesOnSheets; }
    int defaultLineWeight() const { return m_defaultLineWeight; }
    /// How far the texts and shapes of linetypes reach from their line at most, pattern units.
    double linetypeReach() const { return m_linetypeReach; }

private:
    void readLayer(AcDbObjectId record);

    const AcDbDatabase &m_database;
    std::uint64_t m_changeCount = ~std::uint64_t(0);
    AcDbObjectId m_layerZero;
    AcGiLayer m_plain;
    std::unordered_map<AcDbObjectId, AcGiLayer> m_layers;
    std::unordered_map<AcDbObjectId, AcGiLinetype> m_linetypes;
    double m_linetypeScale = 1.0;
    double m_linetypeReach = 0.0;
    bool m_scalesOnSheets = true;
    int m_defaultLineWeight = 25;
};

struct AcGiPen {
    AcDbObjectId layer;
    QRgb color = 0xFFFFFFFF;                ///< With its transparency, not premultiplied.
    float width = 0.0F;                     ///< Pixels; 0 is the thinnest line.
    const AcGiLinetype *linetype = nullptr; ///< Null is continuous.
    double linetypeScale = 1.0;             ///< Drawing units to a pattern unit.
    bool isShown = true;
    bool isFrozen = false; ///< Then nothing that the entity shows is shown, whatever its layer.
};

/// Resolves traits for one picture. Reading from several threads is fine.
class AcGiPens
{
public:
    /// All must outlive this. `frozen`: layers that the viewport freezes.
    AcGiPens(const AcGiDrawingTables &tables, const AcGiPaintOptions &options,
             const std::vector<AcDbObjectId> &frozen = {});
    /// Prepares the traits behind those that are known already.
    void add(const std::deque<AcGiTraits> &traits);

    /// What stands by block or on layer 0 looks as `shower`, the pen of the reference that shows the block.
    AcGiPen pen(const AcGiTraits &traits, const AcGiPen *shower) const;
    /// The same for the lists of entities that stand in no drawing.
    void addOwn(const std::deque<AcGiTraits> &traits);
    /// The pen of the traits of that number.
    const AcGiPen &pen(std::uint32_t number, const AcGiPen *shower, AcGiPen &scratch) const;
    /// How far what is drawn reaches out of the boxes of its lists at most, pixels.
    double margin(double pixelsPerUnit) const;
    bool scalesLinetypesOnSheets() const { return m_tables.scalesLinetypesOnSheets(); }
    QRgb foreground() const { return m_foreground; }
    QRgb background() const { return m_background; }

private:
    QRgb color(const AcCmEntityColor &color) const;
    float width(int hundredths) const;
    bool isFrozenHere(AcDbObjectId layer) const;

    struct Known {
        AcGiPen pen;
        const AcGiTraits *traits;
        bool dependsOnShower;
    };
    void add(const std::deque<AcGiTraits> &traits, std::vector<Known> &known);

    const AcGiDrawingTables &m_tables;
    const AcGiPaintOptions &m_options;
    std::vector<AcDbObjectId> m_frozen;
    QRgb m_background;
    QRgb m_foreground;
    std::vector<Known> m_known;
    std::vector<Known> m_own;
    float m_widest = 0.0F;
    double m_largestScale = 0.0; ///< Of linetypes.
};
