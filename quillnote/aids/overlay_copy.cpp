#include "quillnote/aids/overlay_copy.h"

#include "quillnote/aids/recolouring.h"
#include "quillnote/frame/settings/settings.h"

#include "host/acap/docfile.h"
#include "host/acap/docman.h"
#include "host/acdb/dbents.h"
#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbundo.h"
#include "host/aced/edfrontend.h"
#include "host/base/path_name.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

static const QString kApplication = QStringLiteral("QuillnoteOverlay");

// Attribute definitions ---------------------------------------------------------------------------

/// A text that shows the tag where the definition would show it.
static std::unique_ptr<AcDbEntity> textOfDefinition(const AcDbEntity &definition)
{
    const ResbufList &groups = definition.groups();
    const std::size_t own = subclassBegin(groups, u"AcDbText");
    const std::size_t from = own == groups.size() ? 0 : own;
    ResbufList text{{100, QStringLiteral("AcDbText")}};
    for (const int code : {10, 40, 50, 41, 7, 71, 210}) {
        if (const resbuf *const group = findGroup(groups, code, from))
            text.emplace_back(code, group->resval);
    }
    const resbuf *const tag = findGroup(groups, 2);
    text.emplace_back(1, tag ? tag->text() : QString());
    text.emplace_back(100, QStringLiteral("AcDbText"));
    std::unique_ptr<AcDbEntity> made = acdbNewEntity("TEXT", std::move(text));
    made->setLayer(definition.layer());
    made->setStatedColor(definition.statedColor());
    return made;
}

static bool isInvisible(const AcDbEntity &definition)
{
    const std::size_t own = subclassBegin(definition.groups(), u"AcDbAttributeDefinition");
    const resbuf *const flags =
        findGroup(definition.groups(), 70, own == definition.groups().size() ? 0 : own);
    return flags && (flags->integer() & 1);
}

static void replaceDefinition(AcDbBlockTableRecord &space, AcDbEntity &definition)
{
    if (!isInvisible(definition)) {
        std::unique_ptr<AcDbEntity> text = textOfDefinition(definition);
        AcDbObjectId id;
        if (space.appendAcDbEntity(id, text.get()) != Acad::eOk) {
            acutPrintf(QStringLiteral("\nAppend Text Error!"));
            return;
        }
        text.release()->close();
    }
    definition.erase();
}

static void replaceDefinitions(AcDbDatabase &database)
{
    const AcDbKind definitions = acdbKind("ATTDEF");
    for (const AcDbObjectId layout : acdbLayoutBlocks(database)) {
        const AcDbObjectPointer<AcDbBlockTableRecord> space(layout, AcDb::kForWrite);
        if (!space)
            continue;
        for (const AcDbObjectId id : space->entities()) {
            const AcDbObjectPointer<AcDbEntity> entity(id.stub()->kind == definitions ? id : AcDbObjectId(),
                                                       AcDb::kForWrite);
            if (entity)
                replaceDefinition(*space, *entity);
        }
    }
}

// The file ----------------------------------------------------------------------------------------

/// The user's folder for temporary files; the home folder when there is none and none can be made.
static QString overlayFolder()
{
    const QString folder = QDir::tempPath();
    if (base::isFolder(folder) || QDir().mkpath(folder))
        return folder;
    acutPrintf(QStringLiteral("\n创建文件夹 %1 失败.").arg(folder));
    return QDir::homePath();
}

/// A name that no file has, whatever its ending; without one.
static QString freeName(const QString &source)
{
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("hhmmss"));
    const QString start =
        QDir(overlayFolder())
            .filePath(kOverlayPrefix.toString() + QFileInfo(source).completeBaseName() + stamp);
    int counter = 1;
    const auto isTaken = [&] {
        const QString name = start + QString::number(counter);
        return base::pathExists(name + QStringLiteral(".dwg")) ||
               base::pathExists(name + QStringLiteral(".dxf"));
    };
    while (isTaken())
        ++counter;
    return start + QString::number(counter);
}

base::Result<OverlayCopy, OverlayTrouble> makeOverlayCopy(const QString &source, int colorIndex)
{
    const auto read = acapReadDrawing(source);
    if (!read) {
        acutPrintf(u'\n' + read.error());
        return base::Failure{OverlayTrouble::unreadable};
    }
    AcDbDatabase &database = **read;
    database.undo().setRecording(false);
    replaceDefinitions(database);
    if (paintEverything(database, colorIndex, acDocManager()->progress()).isStopped)
        return base::Failure{OverlayTrouble::stopped};
    const QString name = freeName(source);
    const AcGePoint3d base = database.headerPoint("$INSBASE");
    // Not every drawing can be written as DWG.
    for (const QLatin1String ending : {QLatin1String(".dwg"), QLatin1String(".dxf")}) {
        if (acapWriteDrawing(database, name + ending, {}, {}))
            return OverlayCopy{name + ending, base};
    }
    return base::Failure{OverlayTrouble::notSaved};
}

// What a drawing says of its overlays -------------------------------------------------------------

bool showsOverlay(const AcDbEntity &entity)
{
    const auto *const reference = dynamic_cast<const AcDbBlockReference *>(&entity);
    return reference && reference->blockName().startsWith(kOverlayPrefix);
}

std::vector<Overlay> overlaysOf(const AcDbDatabase &database)
{
    std::vector<Overlay> overlays;
    for (const std::uint32_t index : database.tableRecords(SymbolTable::block)) {
        const AcDbObjectId id(database.stub(index));
        const AcDbObjectPointer<AcDbBlockTableRecord> record(id, AcDb::kForRead);
        if (!record || !record->getName().startsWith(kOverlayPrefix))
            continue;
        const BlockContents *const contents = database.blockContents(id);
        const AcDbStub *const begin = contents ? contents->blockBegin : nullptr;
        const ResbufList groups = begin ? database.fileGroups(*begin) : ResbufList();
        const resbuf *const file = findGroup(groups, 1);
        if (!file || file->text().isEmpty())
            continue;
        Overlay overlay{.block = id, .name = record->getName(), .file = file->text(), .source = {}};
        for (const resbuf &item : record->xData(kApplication)) {
            if (item.restype == 1000)
                overlay.source += item.text();
            else if (item.restype == 1070)
                overlay.colorIndex = int(item.integer());
        }
        overlays.push_back(std::move(overlay));
    }
    return overlays;
}

void rememberOverlaySource(AcDbObjectId block, const QString &source, int colorIndex)
{
    AcDbSymbolTable::ensureApplicationId(*block.database(), kApplication);
    const AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForWrite);
    if (!record)
        return;
    constexpr qsizetype kLongest = 255; // Of a text in extended data.
    ResbufList data{{1001, kApplication}, {1070, std::int64_t(colorIndex)}};
    for (qsizetype at = 0; at < source.size(); at += kLongest)
        data.emplace_back(1000, source.mid(at, kLongest));
    record->setXData(data);
}

// Cleaning ----------------------------------------------------------------------------------------

namespace
{

/// Which drawing was saved with which copy, as the settings keep it: in each row the name of a copy, a line
/// end and the path of the drawing.
class KnownOverlays
{
public:
    /// Empty when no drawing is known.
    static QString drawingOf(const QString &copy)
    {
        for (int row = 0; row < kRows; ++row) {
            if (const QString text = settings::text(u"Overlay%d", row); text.section(u'\n', 0, 0) == copy)
                return text.section(u'\n', 1);
        }
        return {};
    }
    /// An empty drawing forgets the copy. Rows of copies that are gone are used again.
    static void set(const QString &copy, const QString &drawing)
    {
        int free = -1;
        for (int row = 0; row < kRows; ++row) {
            const QString text = settings::text(u"Overlay%d", row);
            const QString known = text.section(u'\n', 0, 0);
            if (known == copy) {
                free = row;
                break;
            }
            const bool isGone = known.isEmpty() || !base::pathExists(QDir(QDir::tempPath()).filePath(known));
            if (free < 0 && isGone)
                free = row;
        }
        if (free >= 0)
            settings::setText(u"Overlay%d", free, drawing.isEmpty() ? QString() : copy + u'\n' + drawing);
    }

private:
    static constexpr int kRows = 200;
};

} // namespace

void keepOverlaysFor(const AcDbDatabase &database, const QString &drawing)
{
    for (const Overlay &overlay : overlaysOf(database))
        KnownOverlays::set(QFileInfo(overlay.file).fileName(), drawing);
}

static bool isShownByOpen(const QString &fileName)
{
    const std::vector<AcApDocument *> documents = acDocManager()->allDocuments();
    return std::ranges::any_of(documents, [&](const AcApDocument *document) {
        const std::vector<Overlay> overlays = overlaysOf(*document->database());
        return std::ranges::any_of(
            overlays, [&](const Overlay &overlay) { return QFileInfo(overlay.file).fileName() == fileName; });
    });
}

void removeUnusedOverlays()
{
    static const QRegularExpression kOurs(QRegularExpression::anchoredPattern(
        kOverlayPrefix.toString() + QStringLiteral(".*\\d{7,}\\.(dwg|dxf)")));
    constexpr qint64 kYoung = 24 * 60 * 60;
    const QDir folder(QDir::tempPath());
    const QStringList names =
        folder.entryList({kOverlayPrefix.toString() + QStringLiteral("*")}, QDir::Files);
    for (const QString &name : names) {
        const QFileInfo file(folder.filePath(name));
        const bool isYoung = file.lastModified().secsTo(QDateTime::currentDateTime()) < kYoung;
        if (!kOurs.match(name).hasMatch() || file.isSymLink() || isYoung || isShownByOpen(name))
            continue;
        if (base::isPlainFile(KnownOverlays::drawingOf(name)))
            continue;
        if (QFile::remove(file.filePath()))
            KnownOverlays::set(name, {});
    }
}
