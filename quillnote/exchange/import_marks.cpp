#include "quillnote/exchange/import_marks.h"

#include "quillnote/aids/tick_symbols.h"
#include "quillnote/authoring/collect_marks.h"
#include "quillnote/authoring/new_mark.h"
#include "quillnote/authoring/numbering.h"
#include "quillnote/entity/mark_dictionary.h"
#include "quillnote/entity/mark_layout.h"
#include "quillnote/entity/mark_values.h"
#include "quillnote/entity/password.h"
#include "quillnote/exchange/export_marks.h"
#include "quillnote/exchange/synchronisation.h"
#include "quillnote/snapshot/zoom_to_area.h"

#include "host/acap/docman.h"
#include "host/acdb/dbsymtb.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/aced/edmessage.h"
#include "host/acui/acuifile.h"
#include "host/base/file_bytes.h"

#include <QEventLoop>
#include <QFile>
#include <QTimer>
#include <QUuid>

#include <set>
#include <unordered_map>

static constexpr int kColorOfNoColor = 2;
static constexpr int kBlinks = 4;
static constexpr int kBlinkMilliseconds = 250;

// Layers ---------------------------------------------------------------------------------------------

static AcDbObjectId findOrAddLayer(AcDbDatabase &database, const QString &name)
{
    AcDbSymbolTable layers(database, SymbolTable::layer);
    AcDbObjectId id = layers.getAt(name);
    if (id.isNull() && layers.addLike(QStringLiteral("0"), name, id) == Acad::eOk)
        static_cast<AcDbLayerTableRecord *>(id.stub()->object)->close();
    return id;
}

/// Visible and writable, in the colour of the drawing that the mark comes from. False when there is none.
static bool prepareLayer(AcDbDatabase &database, const QString &name, int color)
{
    AcDbObjectPointer<AcDbLayerTableRecord> layer(findOrAddLayer(database, name), AcDb::kForWrite);
    if (!layer)
        return false;
    layer->setIsFrozen(false);
    layer->setIsOff(false);
    layer->setIsFrozenInNewViewports(false);
    layer->setIsLocked(false);
    layer->setColorIndex(color >= 1 && color <= 255 ? color : kColorOfNoColor);
    return true;
}

// Marks ----------------------------------------------------------------------------------------------

/// Marks of a drawing by their GUID.
class KnownMarks
{
public:
    explicit KnownMarks(const AcDbDatabase &database)
    {
        for (const AcDbObjectId id : collectMarks(database).ids) {
            if (const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead); mark)
                add(mark->GUID, id);
        }
    }
    void add(const QString &guid, AcDbObjectId id)
    {
        if (!guid.isEmpty())
            m_byGuid[guid].push_back(id);
    }
    std::vector<AcDbObjectId> of(const QString &guid) const
    {
        const auto found = m_byGuid.find(guid);
        return found == m_byGuid.end() ? std::vector<AcDbObjectId>() : found->second;
    }

private:
    std::unordered_map<QString, std::vector<AcDbObjectId>> m_byGuid;
};

/// What data files do not carry stays with the mark as long as its target stays where it is.
static void keepSnapshot(AcDbObjectId replaced, QuillnoteObj3 &mark)
{
    const AcDbObjectPointer<QuillnoteObj3> opened(replaced, AcDb::kForRead, true);
    if (!opened)
        return;
    const QuillnoteObj3 &old = *opened;
    if (old.targetCorner1 != mark.targetCorner1 || old.targetCorner2 != mark.targetCorner2)
        return;
    mark.snapEntityIds = old.snapEntityIds;
    mark.snapNote = old.snapNote;
    mark.snapChecksum = old.snapChecksum;
    mark.snapImage = old.snapImage;
    mark.fullImage = old.fullImage;
    mark.editVersion = old.editVersion;
    mark.autoTextHeight = old.autoTextHeight;
}

/// Where a mark stands in the copy of the drawing that it comes from, as far as this one has the same place;
/// null is the current space.
static AcDbObjectId spaceOf(const AcDbDatabase &database, const MarkDataRecord &record)
{
    const std::vector<AcDbObjectId> layouts = acdbLayoutBlocks(database);
    const auto found = std::ranges::find(layouts, record.owner, &AcDbObjectId::handle);
    return found == layouts.end() ? AcDbObjectId() : *found;
}

/// Erases a mark for its newer state. A password that both have need not be given: nothing is changed that
/// the author of the newer state could not change.
static bool makeWay(AcDbObjectId id, const QString &passwordHash)
{
    if (!id.isValid())
        return true;
    AcDbObjectPointer<QuillnoteObj3> old(id, AcDb::kForWrite);
    if (!old || !old->erasable)
        return false;
    if (sameHash(old->chPwMD5, passwordHash))
        old->chPwMD5.clear();
    return old->erase() == Acad::eOk;
}

/// The same for what people share: whoever changed or erased the mark was asked for the password where he is.
static bool makeWayForShared(AcDbObjectId id)
{
    if (!id.isValid())
        return true;
    AcDbObjectPointer<QuillnoteObj3> old(id, AcDb::kForWrite);
    if (!old)
        return false;
    old->erasable = true;
    old->chPwMD5.clear();
    return old->erase() == Acad::eOk;
}

// Copies of changes that were overtaken ------------------------------------------------------------------

static bool saysOtherWords(const QuillnoteObj3 &mark, AcDbObjectId winner)
{
    const AcDbObjectPointer<QuillnoteObj3> won(winner, AcDb::kForRead);
    return !won || won->suggestionContent != mark.suggestionContent ||
           won->feedbackContent != mark.feedbackContent || won->feedbackType != mark.feedbackType ||
           won->sketchData != mark.sketchData;
}

/// A change of this user came too late: another's took its place. Its words stay as a mark of their own,
/// which gets the next number of the mark that it was. Words that the winner says as well are not kept;
/// neither is what is kept already.
static void becomeCopies(const AcDbDatabase &database, const QByteArray &drawing,
                         std::vector<MarkDataRecord> &records)
{
    const KnownMarks known(database);
    const CollectedMarks marks = collectMarks(database);
    std::erase_if(records, [&](MarkDataRecord &record) {
        QuillnoteObj3 &mark = *record.mark;
        const std::vector<AcDbObjectId> winners = known.of(mark.GUID);
        if (!winners.empty() && !saysOtherWords(mark, winners.front()))
            return true;
        mark.GUID =
            QUuid::createUuidV5(QUuid::fromRfc4122(drawing), digestOf(mark).toHex()).toString().toUpper();
        const auto sameNumber = std::ranges::count_if(marks.ids, [&](AcDbObjectId id) {
            const AcDbObjectPointer<QuillnoteObj3> other(id, AcDb::kForRead);
            return other && other->markNumber == mark.markNumber;
        });
        mark.subNumber = std::uint16_t(sameNumber + 1);
        if (known.of(mark.GUID).empty())
            acutPrintf(QStringLiteral("\n他人同时修改了评图标签 %1，您的内容另存为 %2。")
                           .arg(mark.markNumber)
                           .arg(markNumberText(mark.markNumber, mark.subNumber)));
        return !known.of(mark.GUID).empty();
    });
}

class MarkImport
{
public:
    MarkImport(AcDbDatabase &database, const std::optional<SharedChange> &shared)
        : m_database(database), m_shared(shared), m_known(database)
    {
    }

    void take(MarkDataRecord &record, ImportedMarks &imported)
    {
        QuillnoteObj3 &mark = *record.mark;
        if (m_shared && isOutdated(m_database, mark.GUID, *m_shared))
            return;
        const QString layer = record.layer.trimmed();
        if (!layer.isEmpty() && prepareOnce(layer, record.layerColor))
            mark.setLayer(layer);
        const std::vector<AcDbObjectId> others = m_known.of(mark.GUID);
        const QByteArray digest = sharedDrawing(m_database) ? digestOf(mark) : QByteArray();
        if (m_shared && others.size() == 1 && saysTheSame(others.front(), digest)) {
            noteReceived(m_database, mark.GUID, digest);
            return;
        }
        for (const AcDbObjectId old : others) {
            if (m_shared ? !makeWayForShared(old) : !makeWay(old, mark.chPwMD5)) {
                ++imported.kept;
                return;
            }
        }
        if (others.size() == 1)
            keepSnapshot(others.front(), mark);
        // A mark that was settled where it comes from looks the same here, whatever the view.
        if (!mark.cornersValid)
            settleMark(mark, m_database);
        const QString guid = mark.GUID;
        const std::uint16_t number = mark.markNumber;
        if (!m_shared || !m_shared->asCopies) // Copies are news to everybody.
            noteReceived(m_database, guid, digest);
        const AcDbObjectId id = appendMark(m_database, std::move(record.mark),
                                           m_shared ? spaceOf(m_database, record) : AcDbObjectId());
        if (id.isNull()) {
            ++imported.refused;
            return;
        }
        m_known.add(guid, id);
        m_highest = std::max(m_highest, number);
        imported.marks.push_back(id);
    }

    void keepHighestNumber()
    {
        if (m_highest > readLastMarkNumber(m_database))
            keepMarkNumber(m_database, m_highest);
    }

private:
    bool prepareOnce(const QString &layer, int color)
    {
        const bool first = m_prepared.insert({layer, color}).second;
        return first ? prepareLayer(m_database, layer, color)
                     : m_database.tableRecord(SymbolTable::layer, layer).isValid();
    }

    static bool saysTheSame(AcDbObjectId id, const QByteArray &digest)
    {
        const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
        return mark && !digest.isEmpty() && digestOf(*mark) == digest;
    }

    AcDbDatabase &m_database;
    const std::optional<SharedChange> &m_shared;
    KnownMarks m_known;
    std::set<std::pair<QString, int>> m_prepared;
    std::uint16_t m_highest = 0;
};

ImportedMarks importMarkData(AcDbDatabase &database, MarkData data)
{
    const ImportingScope importing;
    ImportedMarks imported;
    if (data.shared && data.shared->asCopies)
        becomeCopies(database, data.shared->drawing, data.marks);
    MarkImport import(database, data.shared);
    for (MarkDataRecord &record : data.marks)
        import.take(record, imported);
    for (const TickRecord &tick : data.ticks) {
        if (!insertTick(database, tick).isNull())
            ++imported.ticks;
        else
            ++imported.missingTicks;
    }
    import.keepHighestNumber();
    return imported;
}

// Files ----------------------------------------------------------------------------------------------

static void tellLeftOut(const QString &path, const MarkDataContents &contents)
{
    for (const bool tooMany : {contents.tooManyMarks, contents.tooManyTicks}) {
        if (tooMany)
            acutPrintf(QStringLiteral("\n读取<%1>错误4，记录条目大于一万。").arg(path));
    }
    if (contents.missing > 0)
        acutPrintf(QStringLiteral("\n<%1>不完整，有 %2 条记录未能读取。").arg(path).arg(contents.missing));
    if (contents.left > 0)
        acutPrintf(QStringLiteral("\n<%1>末尾多出 %2 个字节，未读取。").arg(path).arg(contents.left));
}

static void tellImported(const ImportedMarks &imported)
{
    if (imported.kept > 0)
        acutPrintf(QStringLiteral("\n有 %1 个评图标签受保护，保留图中原有的，未导入。").arg(imported.kept));
    if (imported.refused > 0)
        acutPrintf(QStringLiteral("\n图形拒绝了 %1 个评图标签，未导入。").arg(imported.refused));
    if (imported.missingTicks > 0)
        acedAlert(
            QStringLiteral("绿色对勾、或红叉、或问号所使用的专用图块没找到。\n建议先重新安装评图标签程序，"
                           "或从别的机器上拷贝该图块文件到本机相同位置。"));
}

static void showLast(const ImportedMarks &imported)
{
    if (imported.marks.empty())
        return;
    AcDbExtents box;
    const AcDbObjectPointer<QuillnoteObj3> last(imported.marks.back(), AcDb::kForRead);
    if (last && last->getGeomExtents(box) == Acad::eOk)
        zoomToArea(box, {}, ZoomWhen::ifOutside);
}

/// What speaks against a file, and what a person is asked about it.
static bool passes(bool good, WhenInDoubt doubt, const QString &trouble, const QString &question)
{
    if (good || doubt == WhenInDoubt::import)
        return true;
    if (doubt == WhenInDoubt::ask)
        return acedAsk(trouble + question, AcEdButtons::yesNo) == AcEdButton::yes;
    acutPrintf(trouble);
    return false;
}

/// A file that was cut off behind zeros has the right sum all the same.
static bool mayImport(const QString &path, const MarkDataHeader &header, const MarkDataContents &contents,
                      const AcDbDatabase &database, WhenInDoubt doubt)
{
    const bool sameDrawing =
        header.fingerprint.compare(drawingFingerprint(database), Qt::CaseInsensitive) == 0;
    return passes(sameDrawing, doubt,
                  QStringLiteral("\n指纹错误。\n文件<%1>不是本图的Quillnote数据文件。").arg(path),
                  QStringLiteral("\n\n强制导入到本图吗？")) &&
           passes(header.checksumHolds && contents.missing == 0, doubt, QStringLiteral("\n校验和错误错误。"),
                  QStringLiteral("\n强制导入到本图吗？"));
}

static ImportedFile importMarks(const QString &path, QByteArrayView bytes, const MarkDataHeader &header,
                                WhenInDoubt doubt)
{
    AcDbDatabase &database = *acdbCurDwg();
    MarkDataContents contents = readMarkData(bytes, header);
    if (!mayImport(path, header, contents, database, doubt))
        return ImportedFile::refused;
    const ImportedMarks imported = importMarkData(database, std::move(contents.data));
    tellLeftOut(path, contents);
    tellImported(imported);
    showLast(imported);
    const bool isWhole = contents.missing == 0 && contents.left == 0 && !contents.tooManyMarks &&
                         !contents.tooManyTicks && imported.kept == 0 && imported.refused == 0 &&
                         imported.missingTicks == 0;
    return isWhole ? ImportedFile::whole : ImportedFile::partly;
}

/// The box around what is about to be erased: the target, or text box and leader ends.
static void addPlaces(const QuillnoteObj3 &mark, AcDbExtents &box)
{
    if (!hasTextBox(mark.leaderMode)) {
        box.addPoint(mark.targetCorner1);
        box.addPoint(mark.targetCorner2);
        return;
    }
    box.addPoint(mark.textBoxCorner1);
    box.addPoint(mark.textBoxCorner2);
    for (std::size_t i = 0; i < fields::kSlots; ++i) {
        if (mark.leaderUsed[i])
            box.addPoint(mark.leaderEnds[i]);
    }
}

/// Shows which marks are meant; where nobody looks it takes no time.
static void blink(const std::vector<AcDbObjectId> &marks, int times)
{
    if (acedFrontEnd().isScripted())
        return;
    for (int shown = 0; shown < 2 * times; ++shown) {
        acedFrontEnd().showChosen(shown % 2 == 0 ? marks : std::vector<AcDbObjectId>());
        QEventLoop loop;
        QTimer::singleShot(kBlinkMilliseconds, &loop, &QEventLoop::quit);
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    }
}

static void eraseMarks(AcDbDatabase &database, QStringList guids, const std::optional<SharedChange> &shared)
{
    if (shared) {
        guids.removeIf([&](const QString &guid) { return isOutdated(database, guid, *shared); });
        for (const QString &guid : guids)
            noteReceived(database, guid, erasedDigest());
    }
    const KnownMarks known(database);
    std::vector<AcDbObjectId> doomed;
    AcDbExtents box;
    for (const QString &guid : guids) {
        for (const AcDbObjectId id : known.of(guid)) {
            const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
            if (!mark)
                continue;
            addPlaces(*mark, box);
            doomed.push_back(id);
        }
    }
    if (doomed.empty())
        return;
    zoomToArea(box, {}, ZoomWhen::ifOutside);
    blink(doomed, kBlinks);
    const ImportingScope importing;
    for (const AcDbObjectId id : doomed) {
        if (shared)
            makeWayForShared(id);
        else if (AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForWrite); mark)
            mark->erase();
    }
}

static ImportedFile importErased(QByteArrayView bytes, const MarkDataHeader &header)
{
    const std::optional<QStringList> guids = readErasedMarks(bytes, header);
    if (!header.checksumHolds || !guids)
        acedRefuse(QStringLiteral("同步删除评图标签时遇到数据校验和错误。"));
    else if (header.markCount > kMostDataRecords)
        acedRefuse(QStringLiteral("同步删除评图标签时读取记录条目大于一万。报告错误"));
    else if (header.markCount == 0)
        acedRefuse(QStringLiteral("同步删除评图标签时读取记录条目数为0。报告错误"));
    else {
        eraseMarks(*acdbCurDwg(), *guids, header.shared);
        return ImportedFile::whole;
    }
    return ImportedFile::refused;
}

ImportedFile importMarkDataFile(const QString &path, WhenInDoubt doubt)
{
    const auto file = base::readFileBytes(path);
    if (!file) {
        acedRefuse(QStringLiteral("读取Quillnote数据文件<%1>错误1。").arg(path));
        return ImportedFile::unreadable;
    }
    const QByteArrayView bytes(file->data(), qsizetype(file->size()));
    const std::optional<MarkDataHeader> header = readMarkDataHeader(bytes);
    if (!header) {
        acedRefuse(QStringLiteral("读取<%1>错误2，不是Quillnote数据文件。").arg(path));
        return ImportedFile::unreadable;
    }
    if (header->kind == MarkDataKind::erased)
        return importErased(bytes, *header);
    return importMarks(path, bytes, *header, doubt);
}

void QN3_DataFileIn()
{
    QString path;
    if (acedGetFileD(QStringLiteral("Quillnote"), {}, QStringLiteral("Quillnote3;Quillnote"), kAcUiOpenFile,
                     path) == RTNORM)
        importMarkDataFile(path, WhenInDoubt::ask);
}

void QN3_DataFileInQuiet()
{
    QString path;
    if (acedGetString(true, QStringLiteral("请输入评图标签独立文件："), path) != RTNORM || path.isEmpty())
        return;
    if (importMarkDataFile(path, WhenInDoubt::import) != ImportedFile::unreadable)
        QFile::remove(path);
}
