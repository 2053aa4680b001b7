#include "quillnote/authoring/mark_layer.h"

#include "quillnote/frame/settings/settings.h"

#include "host/acdb/dbsymtb.h"
#include "host/aced/edinput.h"
#include "host/aced/edsysvar.h"

static constexpr qsizetype kLongestName = 36;

QString markLayerName()
{
    const QString name = settings::text(u"LayerName").trimmed();
    return name.isEmpty() || name.size() > kLongestName ? QStringLiteral("评图标签") : name;
}

static AcDbObjectId findOrAddLayer(AcDbDatabase &database, const QString &name)
{
    AcDbSymbolTable layers(database, SymbolTable::layer);
    AcDbObjectId id = layers.getAt(name);
    if (id.isValid() || layers.addLike(QStringLiteral("0"), name, id) != Acad::eOk)
        return id;
    AcDbObjectPointer<AcDbLayerTableRecord> added(static_cast<AcDbLayerTableRecord *>(id.stub()->object));
    added->setColorIndex(settings::number(u"color1"));
    added->setLinetype(QStringLiteral("Continuous"));
    added->setIsPlottable(true);
    return id;
}

static void repairLayer(AcDbObjectId id)
{
    AcDbObjectPointer<AcDbLayerTableRecord> layer(id, AcDb::kForWrite);
    if (!layer)
        return;
    layer->setIsFrozen(false);
    layer->setIsOff(false);
    layer->setIsFrozenInNewViewports(false);
    layer->setIsLocked(false);
    if (settings::number(u"noPlotLayer") == 1)
        layer->setIsPlottable(false);
}

void ensureMarkLayer(AcDbDatabase &database)
{
    const QString name = markLayerName();
    const AcDbObjectId layer = findOrAddLayer(database, name);
    if (layer.isNull())
        return;
    repairLayer(layer);
    const int echo = acedIntVar(QStringLiteral("cmdecho"));
    acedSetIntVar(QStringLiteral("cmdecho"), 0);
    acedCommandS({QStringLiteral("_LAYER"), QStringLiteral("SET"), name, QString()});
    acedSetIntVar(QStringLiteral("cmdecho"), echo);
}
