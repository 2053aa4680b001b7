// AcDbEntity: an object that stands in a block and has a layer, a colour, a linetype.
#pragma once

#include "host/acdb/dbobject.h"
#include "host/acge/geextents.h"
#include "host/acge/gematrix.h"

#include <QStringList>

#include <optional>
#include <span>

class AcGiViewportDraw;
class AcGiWorldDraw;

/// A colour as an entity's groups state it; what is not stated is by layer.
struct AcDbStatedColor {
    std::optional<int> index; ///< Group 62: 0 by block, 256 by layer.
    std::optional<int> rgb;   ///< Group 420, 0x00RRGGBB; wins over the index.
    QString name;             ///< Group 430, of a colour book.

    friend bool operator==(const AcDbStatedColor &, const AcDbStatedColor &) = default;
};

class AcDbEntity : public AcDbObject
{
public:
    AcDbEntity();
    static AcRxClass *desc();
    AcRxClass *isA() const override;

    QString layer() const;
    AcDbObjectId layerId() const;
    /// eKeyNotFound when the drawing has no such layer (an entity in no drawing takes any name).
    Acad::ErrorStatus setLayer(const QString &name);
    /// 1 to 255, 256 by layer, 0 by block.
    int colorIndex() const;
    virtual Acad::ErrorStatus setColorIndex(int index);
    AcDbStatedColor statedColor() const;
    /// The groups come where those stood that the entity had of them. Needs write access.
    void setStatedColor(const AcDbStatedColor &color);
    QString linetype() const;
    virtual Acad::ErrorStatus setLinetype(const QString &name);
    double linetypeScale() const;
    virtual Acad::ErrorStatus setLinetypeScale(double scale);
    /// Hundredths of a millimetre; -1 by layer, -2 by block, -3 default.
    int lineWeight() const;
    virtual Acad::ErrorStatus setLineWeight(int weight);
    /// The block record whose contents the entity is part of.
    AcDbObjectId blockId() const;

    /// World extents; eInvalidExtents for what has none.
    Acad::ErrorStatus getGeomExtents(AcDbExtents &extents) const;
    /// Needs write access. Attributes and vertices go along.
    Acad::ErrorStatus transformBy(const AcGeMatrix3d &matrix);
    /// Grips: the places that a person can drag, world coordinates. None for kinds that have none.
    std::vector<AcGePoint3d> getGripPoints() const;
    /// Drags grips, named by their places in getGripPoints(), by an offset (world). Needs write access.
    /// eInvalidIndex for grips that the entity does not have; eInvalidInput when it refuses to be changed.
    Acad::ErrorStatus moveGripPointsAt(std::span<const int> grips, const AcGeVector3d &offset);

    // Overridden by custom entities --------------------------------------------------------------
    // Drawing happens while the entity is open for read; it changes nothing that is filed.
    /// Draws what looks the same in every view. True: that was all, subViewportDraw is not asked.
    virtual bool subWorldDraw(AcGiWorldDraw *context) const;
    /// Draws what depends on the view; asked again for each view and whenever its scale or twist changes.
    virtual void subViewportDraw(AcGiViewportDraw *context) const;
    /// Draws what programs without the class will see. Unless overridden, as subWorldDraw.
    virtual void saveAs(AcGiWorldDraw *context) const;
    virtual Acad::ErrorStatus subGetGeomExtents(AcDbExtents &extents) const;
    virtual Acad::ErrorStatus subTransformBy(const AcGeMatrix3d &matrix);
    /// Somebody hid the entity: it is there and draws nothing.
    virtual bool subIsHidden() const { return false; }
    /// What people write into the entity and look for; a search goes through them.
    virtual QStringList subTexts() const { return {}; }
    /// What the entity is, in a few lines, shown where the cursor rests on it; empty: nothing is shown.
    virtual QString subHint() const { return {}; }
    virtual std::vector<AcGePoint3d> subGetGripPoints() const;
    virtual Acad::ErrorStatus subMoveGripPointsAt(std::span<const int> grips, const AcGeVector3d &offset);

protected:
    /// A new entity of a custom kind: subclass marker AcDbEntity, layer "0".
    explicit AcDbEntity(const QByteArray &dxfName);

private:
    /// Where the property stands already, else in the part that all entities have.
    void setCommonGroup(int code, resbuf::Value value);
};

/// The groups that state what all entities have (layer, colour, linetype, visibility ...): those before the
/// subclass of the entity's own kind. When no layer stands there that subclass counts too: some writers put
/// everything into it.
std::span<const resbuf> acdbCommonGroups(const ResbufList &groups);

/// A native entity in no drawing: layer "0" and the groups of its own subclasses, markers included.
std::unique_ptr<AcDbEntity> acdbNewEntity(const QByteArray &dxfName, ResbufList ownGroups);

/// How the extents of native entities are found: given by the drawing layer, which knows how each draws.
using AcDbNativeExtents = Acad::ErrorStatus (*)(const AcDbEntity &entity, AcDbExtents &extents);
void acdbSetNativeExtents(AcDbNativeExtents provider);

/// What programs that do not know an entity's class will show of it: bytes that stand in the entity's record.
/// Given by the drawing layer; empty bytes leave the record without.
using AcDbProxyGraphics = QByteArray (*)(const AcDbEntity &entity);
void acdbSetProxyGraphics(AcDbProxyGraphics provider);
