#include "app/console/info_verb.h"

#include "host/acdb/dbsymtb.h"
#include "host/aced/edverbs.h"
#include "host/aced/edview.h"

#include <QJsonArray>

#include <array>
#include <map>

namespace console
{

// Facts ------------------------------------------------------------------------------------------

static QString versionName(DrawingVersion version)
{
    static constexpr std::array<std::pair<DrawingVersion, const char *>, 9> kNames{{
        {DrawingVersion::r12, "R12"},
        {DrawingVersion::r13, "R13"},
        {DrawingVersion::r14, "R14"},
        {DrawingVersion::r2000, "2000"},
        {DrawingVersion::r2004, "2004"},
        {DrawingVersion::r2007, "2007"},
        {DrawingVersion::r2010, "2010"},
        {DrawingVersion::r2013, "2013"},
        {DrawingVersion::r2018, "2018"},
    }};
    for (const auto &[number, name] : kNames) {
        if (number == version)
            return QString::fromLatin1(name);
    }
    return QStringLiteral("unknown");
}

static QString formatName(const AcDbDatabase &database)
{
    switch (database.source()->format()) {
    case DrawingFormat::dxfText:
        return QStringLiteral("DXF text");
    case DrawingFormat::dxfBinary:
        return QStringLiteral("DXF binary");
    case DrawingFormat::dwg:
        break;
    }
    return QStringLiteral("DWG");
}

/// The marks that begin and end a block definition stand among entities and are none.
static bool isDrawn(const AcDbStub &stub)
{
    const QByteArray &kind = acdbKindName(stub.kind);
    return stub.has(AcDbStub::kEntity) && kind != "BLOCK" && kind != "ENDBLK";
}

/// Numbers of the entities, or of the other objects, that are not erased, by kind.
static QJsonObject countByKind(const AcDbDatabase &database, bool entities)
{
    std::map<AcDbKind, int> counts;
    for (std::uint32_t i = 1; i < database.stubCount(); ++i) {
        const AcDbStub *stub = database.stub(i);
        if (!stub->has(AcDbStub::kErased) && isDrawn(*stub) == entities)
            ++counts[stub->kind];
    }
    QJsonObject result;
    for (const auto &[kind, count] : counts)
        result.insert(QString::fromUtf8(acdbKindName(kind)), count);
    return result;
}

static QJsonArray layers(AcDbDatabase &database)
{
    QJsonArray result;
    for (const AcDbObjectId id : AcDbSymbolTable(database, SymbolTable::layer).records()) {
        const AcDbObjectPointer<AcDbLayerTableRecord> layer(id, AcDb::kForRead);
        if (!layer)
            continue;
        result.append(QJsonObject{{QStringLiteral("name"), layer->getName()},
                                  {QStringLiteral("color"), layer->colorIndex()},
                                  {QStringLiteral("linetype"), layer->linetype()},
                                  {QStringLiteral("off"), layer->isOff()},
                                  {QStringLiteral("frozen"), layer->isFrozen()},
                                  {QStringLiteral("locked"), layer->isLocked()},
                                  {QStringLiteral("plottable"), layer->isPlottable()}});
    }
    return result;
}

static QJsonArray layouts(const AcDbDatabase &database)
{
    QJsonArray result;
    for (const AcDbObjectId id : acdbLayoutBlocks(database)) {
        const AcDbObjectPointer<AcDbBlockTableRecord> block(id, AcDb::kForRead);
        if (!block)
            continue;
        result.append(QJsonObject{{QStringLiteral("name"), acdbLayoutName(id)},
                                  {QStringLiteral("entities"), qint64(block->entities().size())}});
    }
    return result;
}

static QJsonArray classes(const AcDbDatabase &database)
{
    QJsonArray result;
    for (const DrawingClass &each : database.classes()) {
        result.append(QJsonObject{{QStringLiteral("name"), QString::fromUtf8(each.dxfName)},
                                  {QStringLiteral("class"), each.className},
                                  {QStringLiteral("application"), each.application},
                                  {QStringLiteral("entity"), each.isEntity}});
    }
    return result;
}

static QJsonValue extents(const AcApDocument &document)
{
    const AcDbExtents box = acedCurrentExtents(document);
    if (!box.isValid())
        return QJsonValue::Null;
    const auto corner = [](const AcGePoint3d &p) { return QJsonArray{p.x, p.y, p.z}; };
    return QJsonObject{{QStringLiteral("min"), corner(box.minPoint())},
                       {QStringLiteral("max"), corner(box.maxPoint())}};
}

QJsonObject drawingInfo(const AcApDocument &document)
{
    AcDbDatabase &database = *document.database();
    return {
        {QStringLiteral("file"), document.fileName()},
        {QStringLiteral("version"), versionName(database.version())},
        {QStringLiteral("versionNumber"),
         QStringLiteral("AC%1").arg(int(database.version()), 4, 10, QLatin1Char('0'))},
        {QStringLiteral("format"), formatName(database)},
        {QStringLiteral("codePage"), database.headerText("$DWGCODEPAGE")},
        {QStringLiteral("entities"), countByKind(database, true)},
        {QStringLiteral("objects"), countByKind(database, false)},
        {QStringLiteral("layers"), layers(database)},
        {QStringLiteral("layouts"), layouts(database)},
        {QStringLiteral("extents"), extents(document)},
        {QStringLiteral("classes"), classes(database)},
        {QStringLiteral("repairs"), QJsonArray::fromStringList(database.repairs())},
    };
}

// For people -------------------------------------------------------------------------------------

static QString row(const char *title, const QString &text)
{
    return QStringLiteral("  %1 %2\n")
        .arg(QLatin1String(title), -10)
        .arg(text.isEmpty() ? QStringLiteral("-") : text);
}

static QString countsText(const QJsonObject &counts)
{
    QStringList parts;
    for (auto each = counts.begin(); each != counts.end(); ++each)
        parts.append(QStringLiteral("%1 %2").arg(each.key()).arg(each.value().toInt()));
    return parts.join(QStringLiteral(", "));
}

static QString layerText(const QJsonObject &layer)
{
    QString text = layer.value(u"name").toString();
    QStringList states;
    for (const char *state : {"off", "frozen", "locked"}) {
        if (layer.value(QLatin1String(state)).toBool())
            states.append(QLatin1String(state));
    }
    if (!states.isEmpty())
        text += QStringLiteral(" (%1)").arg(states.join(QStringLiteral(", ")));
    return text;
}

template <class Describe>
static QString listText(const QJsonValue &list, Describe describe)
{
    QStringList parts;
    for (const QJsonValue each : list.toArray())
        parts.append(describe(each));
    return parts.join(QStringLiteral(", "));
}

static QString pointText(const QJsonValue &point)
{
    return listText(point,
                    [](const QJsonValue &value) { return QString::number(value.toDouble(), 'g', 10); });
}

static QString extentsText(const QJsonValue &extents)
{
    if (extents.isNull())
        return {};
    return QStringLiteral("(%1) to (%2)").arg(pointText(extents[u"min"]), pointText(extents[u"max"]));
}

QString drawingInfoText(const QJsonObject &info)
{
    QString text = info.value(u"file").toString() + QLatin1Char('\n');
    text += row("version", QStringLiteral("%1 (%2)").arg(info.value(u"version").toString(),
                                                         info.value(u"versionNumber").toString()));
    text += row("format", info.value(u"format").toString());
    text += row("code page", info.value(u"codePage").toString());
    text += row("entities", countsText(info.value(u"entities").toObject()));
    text += row("objects", countsText(info.value(u"objects").toObject()));
    text += row("layers",
                listText(info.value(u"layers"), [](const QJsonValue &v) { return layerText(v.toObject()); }));
    text +=
        row("layouts", listText(info.value(u"layouts"), [](const QJsonValue &v) {
                return QStringLiteral("%1 (%2)").arg(v[u"name"].toString()).arg(v[u"entities"].toInteger());
            }));
    text += row("extents", extentsText(info.value(u"extents")));
    text += row("classes",
                listText(info.value(u"classes"), [](const QJsonValue &v) { return v[u"name"].toString(); }));
    for (const QJsonValue repair : info.value(u"repairs").toArray())
        text += row("repaired", repair.toString());
    return text;
}

int printInfo(const QStringList &files, bool json)
{
    int status = kDone;
    for (const QString &file : files) {
        const OpenDrawing drawing(file);
        if (!drawing.document()) {
            status = kTrouble;
            continue;
        }
        drawing.tellDamage();
        QJsonObject info = drawingInfo(*drawing.document());
        if (json) {
            const QJsonValue repairs = info.value(u"repairs");
            addDamage(info, *drawing.document());
            info.insert(QStringLiteral("repairs"), repairs); // All of them, not their number.
        }
        if (json)
            acedPrintResult(info);
        else
            acedPrintResult(drawingInfoText(info));
    }
    return status;
}

} // namespace console
