#include "host/acdb/dbxrefedit.h"

#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbundo.h"
#include "host/acdb/dbxref.h"
#include "host/acdb/owngroups.h"

#include <algorithm>
#include <array>
#include <set>

/// Flags of a record that stands for one of another drawing: it does so, and that one was found.
static constexpr int kIsDependent = 16;
static constexpr int kIsResolved = 32;

// Blocks -----------------------------------------------------------------------------------------

static AcDbObjectId blockBegin(AcDbObjectId block)
{
    const BlockContents *const contents = block.isNull() ? nullptr : block.database()->blockContents(block);
    return contents ? AcDbObjectId(contents->blockBegin) : AcDbObjectId();
}

template <class Change>
static Acad::ErrorStatus change(AcDbObjectId id, Change work)
{
    const AcDbObjectPointer<AcDbObject> object(id, AcDb::kForWrite);
    if (object)
        work(*object);
    return object.openStatus();
}

AcDbObjectId acdbAttachXref(AcDbDatabase &database, const QString &name, const QString &path, bool isOverlay)
{
    const AcDbObjectId block = AcDbNewBlocks(database).add(name, {});
    if (block.isNull())
        return {};
    block.stub()->object->close();
    change(blockBegin(block), [&](AcDbObject &begin) {
        begin.setGroup(70, std::int64_t(AcDbXrefs::kAttached | (isOverlay ? AcDbXrefs::kOverlay : 0)),
                       u"AcDbBlockBegin");
        begin.setGroup(1, path, u"AcDbBlockBegin");
    });
    return block;
}

Acad::ErrorStatus acdbSetXrefUnloaded(AcDbObjectId block, bool unloaded)
{
    if (unloaded)
        AcDbSymbolTable::ensureApplicationId(*block.database(), AcDbXrefs::kApplication);
    return change(block, [&](AcDbObject &record) {
        ResbufList data{{1001, QString(AcDbXrefs::kApplication)}};
        if (unloaded)
            data.emplace_back(1070, std::int64_t(1));
        record.setXData(data);
    });
}

Acad::ErrorStatus acdbSetXrefPath(AcDbObjectId block, const QString &path)
{
    return change(blockBegin(block), [&](AcDbObject &begin) { begin.setGroup(1, path, u"AcDbBlockBegin"); });
}

Acad::ErrorStatus acdbSetXrefOverlay(AcDbObjectId block, bool isOverlay)
{
    return change(blockBegin(block), [&](AcDbObject &begin) {
        const resbuf *const flags = findGroup(begin.groups(), 70);
        const std::int64_t others = (flags ? flags->integer() : 0) & ~std::int64_t(AcDbXrefs::kOverlay);
        begin.setGroup(70, others | AcDbXrefs::kAttached | (isOverlay ? AcDbXrefs::kOverlay : 0),
                       u"AcDbBlockBegin");
    });
}

// Layers and linetypes ---------------------------------------------------------------------------

namespace
{

/// Makes records of a drawing after those of another that it shows.
class RecordTaker
{
public:
    RecordTaker(AcDbDatabase &target, const AcDbDatabase &from)
        : m_target(target), m_from(from), m_keeps(target.headerInteger("$VISRETAIN", 1) != 0)
    {
    }

    void takeAll()
    {
        for (const std::uint32_t index : m_from.tableRecords(SymbolTable::linetype))
            takeLinetype(AcDbObjectId(m_from.stub(index)));
        for (const std::uint32_t index : m_from.tableRecords(SymbolTable::layer))
            takeLayer(AcDbObjectId(m_from.stub(index)));
    }

private:
    /// What the record is called in the target; empty for one that every drawing has, or erased.
    QString nameOf(AcDbObjectId record, const ResbufList &groups) const
    {
        const resbuf *const name = record.isValid() ? findGroup(groups, 2) : nullptr;
        const QString there = name ? m_from.xrefs().nameInHost(name->text()) : QString();
        return there.contains(u'|') ? there : QString();
    }

    void takeLinetype(AcDbObjectId source)
    {
        const ResbufList groups = m_from.fileGroups(*source.stub());
        const QString name = nameOf(source, groups);
        AcDbSymbolTable table(m_target, SymbolTable::linetype);
        if (name.isEmpty() || table.has(name))
            return;
        const bool isOld = m_target.version() <= DrawingVersion::r12;
        ResbufList made{{0, QStringLiteral("LTYPE")}};
        if (!isOld) {
            made.emplace_back(100, QStringLiteral("AcDbSymbolTableRecord"));
            made.emplace_back(100, QStringLiteral("AcDbLinetypeTableRecord"));
        }
        made.emplace_back(2, name);
        made.emplace_back(70, std::int64_t(kIsDependent | kIsResolved));
        const AcDbHandle style =
            m_target.tableRecord(SymbolTable::textStyle, QStringLiteral("Standard")).handle();
        for (const resbuf &group : OwnGroups(groups)) {
            static constexpr std::array kPlain{3, 72, 73, 40, 49};
            static constexpr std::array kComplex{74, 75, 46, 50, 44, 45, 9};
            if (std::ranges::find(kPlain, group.restype) != kPlain.end() ||
                (!isOld && std::ranges::find(kComplex, group.restype) != kComplex.end()))
                made.emplace_back(group.restype, group.resval);
            else if (!isOld && group.restype == 340)
                made.emplace_back(340, style);
        }
        AcDbObjectId added;
        if (table.add(std::move(made), added) == Acad::eOk)
            added.stub()->object->close();
    }

    void takeLayer(AcDbObjectId source)
    {
        const AcDbObjectPointer<AcDbLayerTableRecord> from(source, AcDb::kForRead);
        const QString name = from ? nameOf(source, from->groups()) : QString();
        if (name.isEmpty())
            return;
        AcDbSymbolTable table(m_target, SymbolTable::layer);
        AcDbObjectId id = table.getAt(name);
        if (!id.isNull() && m_keeps)
            return;
        if (id.isNull() && table.addLike(QStringLiteral("0"), name, id) == Acad::eOk)
            id.stub()->object->close();
        change(id, [&](AcDbObject &record) {
            auto &layer = static_cast<AcDbLayerTableRecord &>(record);
            layer.setFlags((from->flags() & 7) | kIsDependent | kIsResolved);
            layer.setColorIndex(from->colorIndex());
            for (const int code : {420, 370}) {
                if (const resbuf *const group = findGroup(from->groups(), code);
                    group && m_target.version() > DrawingVersion::r12)
                    layer.setGroup(code, group->resval, u"AcDbLayerTableRecord");
            }
            layer.setIsOff(from->isOff());
            if (m_target.version() > DrawingVersion::r12)
                layer.setIsPlottable(from->isPlottable());
            const QString linetype = m_from.xrefs().nameInHost(from->linetype());
            if (m_target.tableRecord(SymbolTable::linetype, linetype).isValid())
                layer.setLinetype(linetype);
        });
        takeTransparency(*from, id);
    }

    void takeTransparency(const AcDbObject &from, AcDbObjectId layer)
    {
        const QString application = QStringLiteral("AcCmTransparency");
        const ResbufList data = from.xData(application);
        if (data.empty() || m_target.version() <= DrawingVersion::r12)
            return;
        AcDbSymbolTable::ensureApplicationId(m_target, application);
        change(layer, [&](AcDbObject &record) {
            ResbufList own;
            for (const resbuf &group : data)
                own.emplace_back(group.restype, group.resval);
            record.setXData(own);
        });
    }

    AcDbDatabase &m_target;
    const AcDbDatabase &m_from;
    bool m_keeps; ///< How the target shows the layers that it has.
};

} // namespace

void acdbTakeXrefRecords(AcDbDatabase &database, const AcDbXref &xref)
{
    if (!xref.database)
        return;
    RecordTaker(database, *xref.database).takeAll();
    std::vector<AcDbXref> shown = xref.database->xrefs().all();
    std::ranges::copy(xref.database->xrefs().nested(), std::back_inserter(shown));
    for (const AcDbXref &each : shown) {
        if (each.database)
            RecordTaker(database, *each.database).takeAll();
    }
}

// Detaching --------------------------------------------------------------------------------------

/// The folded names in front of "|" that the references of a drawing bring, nested ones too.
static std::set<QString> namesBrought(const AcDbDatabase &database)
{
    std::set<QString> names;
    for (const std::vector<AcDbXref> &shown : {database.xrefs().all(), database.xrefs().nested()}) {
        for (const AcDbXref &xref : shown)
            names.insert(xref.name.toCaseFolded());
    }
    return names;
}

/// Those that only a detached reference brought.
static void eraseRecords(AcDbDatabase &database, const std::set<QString> &brought)
{
    const std::set<QString> used = namesBrought(database);
    for (const SymbolTable kind : {SymbolTable::layer, SymbolTable::linetype}) {
        for (const AcDbObjectId id : AcDbSymbolTable(database, kind).records()) {
            AcDbObjectPointer<AcDbSymbolTableRecord> record(id, AcDb::kForRead);
            const qsizetype bar = record ? record->getName().indexOf(u'|') : -1;
            const QString name = bar < 0 ? QString() : record->getName().left(bar).toCaseFolded();
            if (!brought.contains(name) || used.contains(name) || !(record->flags() & kIsDependent))
                continue;
            if (record->upgradeOpen() == Acad::eOk)
                record->erase();
        }
    }
}

static std::vector<AcDbObjectId> referencesTo(const AcDbDatabase &database, const QString &name)
{
    static const AcDbKind kInsert = acdbKind("INSERT");
    std::vector<AcDbObjectId> references;
    for (std::uint32_t i = 1; i < database.stubCount(); ++i) {
        const AcDbObjectId id(database.stub(i));
        if (database.stub(i)->kind != kInsert || !id.isValid())
            continue;
        const ResbufList groups = database.fileGroups(*id.stub());
        const resbuf *const shown = findGroup(groups, 2);
        if (shown && shown->text().compare(name, Qt::CaseInsensitive) == 0)
            references.push_back(id);
    }
    return references;
}

Acad::ErrorStatus acdbDetachXref(AcDbDatabase &database, AcDbObjectId block)
{
    const AcDbXref *const xref = database.xrefs().find(block);
    if (!xref)
        return Acad::eKeyNotFound;
    const QString name = xref->name;
    std::set<QString> brought{name.toCaseFolded()};
    if (xref->database)
        brought.merge(namesBrought(*xref->database));
    Acad::ErrorStatus status = Acad::eOk;
    const auto erase = [&](AcDbObjectId id) {
        if (status != Acad::eOk)
            return;
        const AcDbObjectPointer<AcDbObject> object(id, AcDb::kForWrite);
        status = object ? object->erase() : object.openStatus();
    };
    database.undo().attempt([&] {
        for (const AcDbObjectId reference : referencesTo(database, name))
            erase(reference);
        erase(block);
        if (status == Acad::eOk)
            eraseRecords(database, brought);
        return status == Acad::eOk;
    });
    return status;
}
