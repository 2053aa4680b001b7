#include "app/console/info_verb.h"

#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbxref.h"
#include "host/aced/edverbs.h"
#include "host/aced/edview.h"

#include <QJsonArray>

#include <map>
#include <utility>

namespace console
{

// Facts ------------------------------------------------------------------------------------------

struct VersionName {
    const char *number; ///< $ACADVER
    const char *name;
};

/// Everything before R13 is read alike, but a person wants to know what the file is.
static constexpr VersionName kVersionNames[] = {
    {"MC0.0", "R1.1"},   {"AC1.2", "R1.2"},   {"AC1.3", "R1.3"},   {"AC1.40", "R1.4"},  {"AC1.50", "R2.0"},
    {"AC2.10", "R2.10"}, {"AC2.21", "R2.21"}, {"AC2.22", "R2.22"}, {"AC1001", "R2.22"}, {"AC1002", "R2.5"},
    {"AC1003", "R2.6"},  {"AC1004", "R9"},    {"AC1006", "R10"},   {"AC1009", "R12"},   {"AC1012", "R13"},
    {"AC1014", "R14"},   {"AC1015", "2000"},  {"AC1018", "2004"},  {"AC1021", "2007"},  {"AC1024", "2010"},
    {"AC1027", "2013"},  {"AC1032", "2018"},
};

/// What the file itself says; a file without a version, and the numbers between two versions, are as they are
/// read.
static QString versionNumber(const AcDbDatabase &database)
{
    const QString read = QStringLiteral("AC%1").arg(int(database.version()), 4, 10, QLatin1Char('0'));
    const QString said = database.headerText("$ACADVER").trimmed();
    return database.version() == DrawingVersion::r12 && !said.isEmpty() ? said : read;
}

static QString versionName(const AcDbDatabase &database)
{
    const QString number = versionNumber(database);
    for (const VersionName &known : kVersionNames) {
        if (number == QLatin1String(known.number))
            return QLatin1String(known.name);
    }
    return QStringLiteral("R12 or older");
}

static QString formatName(const AcDbDatabase &database)
{
    switch (database.source()->form()) {
    case DrawingForm::dxfText:
        return QStringLiteral("DXF text");
    case DrawingForm::dxfBinary:
        return QStringLiteral("DXF binary");
    case DrawingForm::dwg:
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

/// Layers may be very many, so whoever wants them gets one at a time.
template <class Use>
static void eachLayer(AcDbDatabase &database, Use use)
{
    for (const AcDbObjectId id : AcDbSymbolTable(database, SymbolTable::layer).records()) {
        if (const AcDbObjectPointer<AcDbLayerTableRecord> layer(id, AcDb::kForRead); layer)
            use(*layer);
    }
}

static QJsonArray layers(AcDbDatabase &database)
{
    QJsonArray result;
    eachLayer(database, [&result](const AcDbLayerTableRecord &layer) {
        result.append(QJsonObject{{QStringLiteral("name"), layer.getName()},
                                  {QStringLiteral("color"), layer.colorIndex()},
                                  {QStringLiteral("linetype"), layer.linetype()},
                                  {QStringLiteral("off"), layer.isOff()},
                                  {QStringLiteral("frozen"), layer.isFrozen()},
                                  {QStringLiteral("locked"), layer.isLocked()},
                                  {QStringLiteral("plottable"), layer.isPlottable()}});
    });
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

/// Those of references come behind them.
static QJsonArray references(const AcDbDatabase &database)
{
    QJsonArray result;
    AcDbXrefs &xrefs = database.xrefs();
    const auto add = [&result](const std::vector<AcDbXref> &some, bool areNested) {
        for (const AcDbXref &xref : some)
            result.append(QJsonObject{{QStringLiteral("name"), xref.name},
                                      {QStringLiteral("path"), xref.path},
                                      {QStringLiteral("file"), xref.file},
                                      {QStringLiteral("overlay"), xref.isOverlay},
                                      {QStringLiteral("nested"), areNested},
                                      {QStringLiteral("state"), acdbXrefStateName(xref.state)}});
    };
    add(xrefs.all(), false);
    add(xrefs.nested(), true);
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

/// Version, format, code page, counts of entities and other objects by kind, layouts, extents of the current
/// space, classes, and what opening had to mend.
static QJsonObject drawingInfo(const AcApDocument &document)
{
    AcDbDatabase &database = *document.database();
    return {
        {QStringLiteral("file"), document.fileName()},
        {QStringLiteral("version"), versionName(database)},
        {QStringLiteral("versionNumber"), versionNumber(database)},
        {QStringLiteral("format"), formatName(database)},
        {QStringLiteral("codePage"), database.headerText("$DWGCODEPAGE")},
        {QStringLiteral("entities"), countByKind(database, true)},
        {QStringLiteral("objects"), countByKind(database, false)},
        {QStringLiteral("layouts"), layouts(database)},
        {QStringLiteral("extents"), extents(document)},
        {QStringLiteral("references"), references(database)},
        {QStringLiteral("classes"), classes(database)},
        {QStringLiteral("notUnderstood"), database.source()->notUnderstood()},
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

static QString layersText(AcDbDatabase &database)
{
    QString text;
    eachLayer(database, [&text](const AcDbLayerTableRecord &layer) {
        QStringList states;
        for (const auto &[isSo, state] :
             {std::pair(layer.isOff(), "off"), {layer.isFrozen(), "frozen"}, {layer.isLocked(), "locked"}}) {
            if (isSo)
                states.append(QLatin1String(state));
        }
        text += (text.isEmpty() ? QString() : QStringLiteral(", ")) + layer.getName();
        if (!states.isEmpty())
            text += QStringLiteral(" (%1)").arg(states.join(QStringLiteral(", ")));
    });
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

static QString drawingInfoText(const QJsonObject &info, AcDbDatabase &database)
{
    QString text = info.value(u"file").toString() + QLatin1Char('\n');
    text += row("version", QStringLiteral("%1 (%2)").arg(info.value(u"version").toString(),
                                                         info.value(u"versionNumber").toString()));
    text += row("format", info.value(u"format").toString());
    text += row("code page", info.value(u"codePage").toString());
    text += row("entities", countsText(info.value(u"entities").toObject()));
    text += row("objects", countsText(info.value(u"objects").toObject()));
    text += row("layers", layersText(database));
    text +=
        row("layouts", listText(info.value(u"layouts"), [](const QJsonValue &v) {
                return QStringLiteral("%1 (%2)").arg(v[u"name"].toString()).arg(v[u"entities"].toInteger());
            }));
    text += row("extents", extentsText(info.value(u"extents")));
    text += row("classes",
                listText(info.value(u"classes"), [](const QJsonValue &v) { return v[u"name"].toString(); }));
    for (const QJsonValue each : info.value(u"references").toArray())
        text += row("reference",
                    QStringLiteral("%1: %2 (%3)")
                        .arg(each[u"name"].toString(), each[u"path"].toString(), each[u"state"].toString()));
    if (const QString kept = info.value(u"notUnderstood").toString(); !kept.isEmpty())
        text += row("kept as is", kept);
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
        AcDbDatabase &database = *drawing.document()->database();
        QJsonObject info = drawingInfo(*drawing.document());
        if (json) {
            info.insert(QStringLiteral("layers"), layers(database));
            const QJsonValue repairs = info.value(u"repairs");
            addDamage(info, *drawing.document());
            info.insert(QStringLiteral("repairs"), repairs); // All of them, not their number.
        }
        if (json)
            acedPrintResult(info);
        else
            acedPrintResult(drawingInfoText(info, database));
    }
    return status;
}

} // namespace console
