#include "host/acdb/dbxref.h"

#include "host/acdb/dbsymtb.h"
#include "host/base/host_text.h"
#include "host/base/path_name.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <map>
#include <set>

// Drawings that are shown ------------------------------------------------------------------------

struct AcDbXrefs::Loaded {
    std::unique_ptr<AcDbDatabase> database; ///< Null when it could not be read.
    std::optional<base::FileStamp> stamp;   ///< Of the file that was read.
    QString error;
};

// A drawing that stands under two names has layers of two names.
struct AcDbXrefs::Pool {
    using Key = std::pair<QString, QString>; ///< Whole path, folded name.
    std::map<Key, Loaded> drawings;
};

static AcDbDrawingReader s_reader = nullptr;

void acdbSetDrawingReader(AcDbDrawingReader reader)
{
    s_reader = reader;
}

AcDbXrefs::AcDbXrefs(AcDbDatabase &database)
    : m_database(database), m_host(&database), m_pool(std::make_shared<Pool>())
{
    m_database.addReactor(this);
}

AcDbXrefs::AcDbXrefs(AcDbDatabase &database, AcDbXrefs &shower, const QString &name, const QString &file)
    : m_database(database), m_host(shower.m_host), m_name(name), m_depth(shower.m_depth + 1),
      m_pool(shower.m_pool.get(), [](Pool *) {}) // The host's; it would own itself otherwise.
{
    database.setFile(file);
    m_database.addReactor(this);
}

AcDbXrefs::~AcDbXrefs()
{
    m_database.removeReactor(this);
}

const std::vector<AcDbXref> &AcDbXrefs::all()
{
    if (!m_isFresh && !m_isReading)
        refresh();
    return m_all;
}

const AcDbXref *AcDbXrefs::find(AcDbObjectId block)
{
    if (!any())
        return nullptr;
    const auto known = m_byBlock.find(block);
    return known == m_byBlock.end() ? nullptr : &m_all[known->second];
}

std::vector<AcDbXref> AcDbXrefs::nested()
{
    std::vector<AcDbXref> found;
    std::set<const AcDbDatabase *> seen;
    std::vector<AcDbXref> waiting = all();
    while (!waiting.empty()) {
        AcDbDatabase *const next = waiting.back().database;
        waiting.pop_back();
        if (!next || !seen.insert(next).second)
            continue;
        const std::vector<AcDbXref> &theirs = next->xrefs().all();
        found.insert(found.end(), theirs.begin(), theirs.end());
        waiting.insert(waiting.end(), theirs.begin(), theirs.end());
    }
    return found;
}

QString AcDbXrefs::nameInHost(const QString &name) const
{
    static constexpr std::array<QLatin1String, 5> kEverywhere{
        QLatin1String("0"), QLatin1String("Defpoints"), QLatin1String("Continuous"), QLatin1String("ByLayer"),
        QLatin1String("ByBlock")};
    const auto isName = [&](QLatin1String other) { return name.compare(other, Qt::CaseInsensitive) == 0; };
    const bool isSame = !isReference() || name.contains(u'|') || std::ranges::any_of(kEverywhere, isName);
    return isSame ? name : m_name + u'|' + name;
}

// What the blocks say ----------------------------------------------------------------------------

const QString AcDbXrefs::kApplication = QStringLiteral("QUILLNOTE_XREF");

/// What a block says of itself; none for a block of the drawing's own.
static std::optional<AcDbXref> statedXref(const AcDbDatabase &database, std::uint32_t index)
{
    const AcDbObjectId record(database.stub(index));
    const BlockContents *const contents = record.isValid() ? database.blockContents(record) : nullptr;
    if (!contents || !contents->blockBegin)
        return std::nullopt;
    const ResbufList begin = database.fileGroups(*contents->blockBegin);
    const resbuf *const flags = findGroup(begin, 70);
    if (!flags || !(flags->integer() & (AcDbXrefs::kAttached | AcDbXrefs::kOverlay)))
        return std::nullopt;
    AcDbXref xref;
    xref.block = record;
    xref.isOverlay = flags->integer() & AcDbXrefs::kOverlay;
    if (const resbuf *const path = findGroup(begin, 1))
        xref.path = path->text();
    const ResbufList groups = database.fileGroups(*record.stub());
    if (const resbuf *const name = findGroup(groups, 2))
        xref.name = name->text();
    bool isOurs = false;
    for (std::size_t i = extendedDataBegin(groups); i < groups.size(); ++i) {
        if (groups[i].restype == 1001)
            isOurs = groups[i].text() == AcDbXrefs::kApplication;
        else if (isOurs && groups[i].restype == 1070 && groups[i].integer() != 0)
            xref.state = AcDbXrefState::unloaded;
    }
    return xref;
}

void AcDbXrefs::refresh()
{
    m_isReading = true;
    m_all.clear();
    m_byBlock.clear();
    for (const std::uint32_t index : m_database.tableRecords(SymbolTable::block)) {
        auto xref = statedXref(m_database, index);
        if (!xref)
            continue;
        if (xref->isOverlay && isReference())
            xref->state = AcDbXrefState::unloaded;
        m_byBlock.emplace(xref->block, m_all.size());
        m_all.push_back(*std::move(xref));
    }
    for (AcDbXref &xref : m_all) {
        if (xref.state != AcDbXrefState::unloaded)
            load(xref);
    }
    m_isFresh = true;
    m_isReading = false;
}

/// From this drawing by what is loaded so far.
bool AcDbXrefs::leadsTo(const AcDbDatabase &wanted) const
{
    return &m_database == &wanted || std::ranges::any_of(m_all, [&](const AcDbXref &xref) {
        return xref.database && xref.database->xrefs().leadsTo(wanted);
    });
}

void AcDbXrefs::load(AcDbXref &xref)
{
    constexpr std::size_t kMostDrawings = 1000;
    constexpr int kDeepest = 32;
    const auto refuse = [&](AcDbXrefState state, const QString &reason) {
        xref.state = state;
        xref.reason = reason;
    };
    xref.file = acdbFindDrawing(xref.path, m_database.folder(), m_database.file());
    if (xref.file.isEmpty()) {
        const bool isItself = !m_database.file().isEmpty() &&
                              acdbFindDrawing(xref.path, m_database.folder()) == m_database.file();
        return refuse(isItself ? AcDbXrefState::circular : AcDbXrefState::notFound, {});
    }
    if (xref.file == m_host->file())
        return refuse(AcDbXrefState::circular, {});
    const Pool::Key key(xref.file, xref.name.toCaseFolded());
    auto known = m_pool->drawings.find(key);
    if (known == m_pool->drawings.end()) {
        if (m_pool->drawings.size() >= kMostDrawings || m_depth >= kDeepest || !s_reader)
            return refuse(AcDbXrefState::refused, Host::tr("more references than can be shown"));
        known = m_pool->drawings.try_emplace(key).first;
        known->second.stamp = base::fileStamp(xref.file);
        auto read = s_reader(xref.file);
        if (read) {
            known->second.database = *std::move(read);
            AcDbDatabase &drawing = *known->second.database;
            drawing.m_xrefs.reset(new AcDbXrefs(drawing, *this, xref.name, xref.file));
        } else {
            known->second.error = read.error();
        }
    }
    const Loaded &loaded = known->second;
    if (!loaded.database)
        return refuse(AcDbXrefState::refused, loaded.error);
    if (loaded.database->xrefs().leadsTo(m_database))
        return refuse(AcDbXrefState::circular, {});
    xref.database = loaded.database.get();
    xref.state = AcDbXrefState::loaded;
    xref.database->xrefs().all();
}

// Changes ----------------------------------------------------------------------------------------

void AcDbXrefs::noteChange(const AcDbObject &object)
{
    const AcDbStub *const stub = object.objectId().stub();
    if (!m_isFresh || !stub)
        return;
    static const AcDbKind kBegin = acdbKind("BLOCK");
    static const AcDbKind kRecord = acdbKind("BLOCK_RECORD");
    if (stub->kind == kRecord && m_byBlock.contains(object.objectId()))
        return changed();
    if (stub->kind != kBegin)
        return;
    const resbuf *const flags = findGroup(object.groups(), 70);
    if ((flags && (flags->integer() & (kAttached | kOverlay))) || m_byBlock.contains(object.ownerId()))
        changed();
}

void AcDbXrefs::changed()
{
    m_isFresh = false;
    m_host->m_reactors.tell([this](AcDbDatabaseReactor &reactor) { reactor.xrefsChanged(m_host); });
}

void AcDbXrefs::reload(AcDbObjectId block, bool always)
{
    const AcDbXref *const xref = find(block);
    if (!xref)
        return;
    // What it shows in turn is read again with it where the file is another one.
    std::set<Pool::Key> doomed;
    const auto doom = [&](const AcDbXref &each, bool force) {
        const Pool::Key key(each.file, each.name.toCaseFolded());
        const auto known = m_pool->drawings.find(key);
        if (known != m_pool->drawings.end() &&
            (force || !known->second.database || known->second.stamp != base::fileStamp(each.file)))
            doomed.insert(key);
    };
    doom(*xref, always);
    if (xref->database) {
        for (const std::vector<AcDbXref> &list :
             {xref->database->xrefs().all(), xref->database->xrefs().nested()}) {
            for (const AcDbXref &each : list)
                doom(each, false);
        }
    }
    // Everybody lets go of the old drawings before they end.
    changed();
    std::vector<Loaded> old;
    for (const Pool::Key &key : doomed) {
        old.push_back(std::move(m_pool->drawings.at(key)));
        m_pool->drawings.erase(key);
    }
    m_all.clear();
    m_byBlock.clear();
    for (auto &[key, loaded] : m_pool->drawings) {
        if (loaded.database)
            loaded.database->xrefs().m_isFresh = false;
    }
    refresh();
}

std::vector<AcDbXref> AcDbXrefs::changedOnDisk()
{
    std::vector<AcDbXref> changed;
    // Nobody looked for any yet: nothing was read.
    if (!m_isFresh)
        return changed;
    std::vector<AcDbXref> shown = m_all;
    std::ranges::copy(nested(), std::back_inserter(shown));
    for (const AcDbXref &xref : shown) {
        const auto known = m_pool->drawings.find({xref.file, xref.name.toCaseFolded()});
        const auto now = known == m_pool->drawings.end() ? std::nullopt : base::fileStamp(xref.file);
        if (now && now != known->second.stamp)
            changed.push_back(xref);
    }
    return changed;
}

// Questions --------------------------------------------------------------------------------------

AcDbObjectId acdbShownBlock(AcDbObjectId block)
{
    AcDbDatabase *const database = block.database();
    const AcDbXref *const xref = database ? database->xrefs().find(block) : nullptr;
    if (!xref)
        return block;
    return xref->database ? xref->database->modelSpaceId() : AcDbObjectId();
}

AcGePoint3d acdbBasePoint(AcDbObjectId block)
{
    AcDbDatabase *const database = block.database();
    if (const AcDbXref *const xref = database ? database->xrefs().find(block) : nullptr;
        xref && xref->database)
        return xref->database->headerPoint("$INSBASE");
    const AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForRead);
    return record ? record->origin() : AcGePoint3d();
}

AcDbObjectId acdbShownLayer(const AcDbDatabase &database, const QString &layer)
{
    const AcDbXrefs &xrefs = database.xrefs();
    if (xrefs.isReference()) {
        const AcDbObjectId own = xrefs.host().tableRecord(SymbolTable::layer, xrefs.nameInHost(layer));
        if (own.isValid())
            return own;
    }
    return database.tableRecord(SymbolTable::layer, layer);
}

QString acdbXrefTrouble(const AcDbXref &xref)
{
    switch (xref.state) {
    case AcDbXrefState::loaded:
        break;
    case AcDbXrefState::unloaded:
        return Host::tr("unloaded");
    case AcDbXrefState::notFound:
        return Host::tr("%1 not found").arg(xref.path);
    case AcDbXrefState::refused:
        return xref.reason;
    case AcDbXrefState::circular:
        return Host::tr("%1 leads back to a drawing that shows it").arg(xref.path);
    }
    return {};
}

// Finding files ----------------------------------------------------------------------------------

/// Where the file may be: beside the drawing or below its folder and the one above, then as written.
static QStringList placesOf(const QString &path, const QString &folder)
{
    QStringList places;
    // A relative folder would be one of where the program was started.
    if (QDir::isAbsolutePath(folder)) {
        const QStringList parts = path.split(u'/', Qt::SkipEmptyParts);
        const bool hasDrive = path.size() > 1 && path[1] == u':';
        if (!QDir::isAbsolutePath(path) && !hasDrive)
            places << QDir(folder).filePath(path);
        // A project that moved with its folders.
        constexpr qsizetype kMostParts = 4;
        for (qsizetype count = 1; count <= std::min(parts.size(), kMostParts); ++count) {
            const QString tail = parts.last(count).join(u'/');
            places << QDir(folder).filePath(tail);
            if (count > 1)
                places << QDir::cleanPath(QDir(folder).filePath(QStringLiteral("../") + tail));
        }
    }
    if (QDir::isAbsolutePath(path))
        places << path;
    return places;
}

/// The file of a folder whose name differs in letter case, or ends as another kind of drawing.
static QString similarFile(const QString &place)
{
    const QFileInfo wanted(place);
    const QDir folder(wanted.path());
    if (wanted.fileName().isEmpty() || wanted.fileName().contains(u'*') || wanted.fileName().contains(u'?'))
        return {};
    const QString title = wanted.completeBaseName();
    for (const QString &name :
         {wanted.fileName(), title + QStringLiteral(".dwg"), title + QStringLiteral(".dxf"),
          wanted.fileName() + QStringLiteral(".dwg"), wanted.fileName() + QStringLiteral(".dxf")}) {
        if (name.contains(u'['))
            continue;
        const QStringList found = folder.entryList({name}, QDir::Files);
        if (!found.isEmpty())
            return folder.filePath(found.front());
    }
    return {};
}

QString acdbFindDrawing(const QString &path, const QString &folder, const QString &exceptFor)
{
    if (path.trimmed().isEmpty())
        return {};
    // Drawings name files as the system they come from does.
    const QStringList places = placesOf(QString(path.trimmed()).replace(u'\\', u'/'), folder);
    for (const QString &place : places) {
        if (!base::pathExists(place) || base::isFolder(place))
            continue;
        if (const QString whole = base::fullPath(place); whole != exceptFor)
            return whole;
    }
    for (const QString &place : places) {
        const QString similar = similarFile(place);
        const QString whole = similar.isEmpty() ? QString() : base::fullPath(similar);
        if (!whole.isEmpty() && whole != exceptFor)
            return whole;
    }
    return {};
}
