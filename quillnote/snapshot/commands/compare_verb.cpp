#include "quillnote/snapshot/commands/compare_verb.h"

#include "quillnote/authoring/all_marks.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/entity/mark_values.h"
#include "quillnote/entity/password.h"
#include "quillnote/snapshot/commands/changed_targets.h"
#include "quillnote/snapshot/commands/compared_picture.h"
#include "quillnote/snapshot/commands/mark_pictures.h"
#include "quillnote/snapshot/commands/place_differences.h"
#include "quillnote/snapshot/commands/refresh_snapshots.h"

#include "host/acdb/dbsymtb.h"
#include "host/aced/edfrontend.h"

#include <QBuffer>

#include <optional>

static const QString kWith = QStringLiteral("--with");
static const QString kPictures = QStringLiteral("--pictures");
static const QString kOutput = QStringLiteral("-o");
static const QString kOverwrite = QStringLiteral("-f");

namespace
{

/// Where "--pictures" puts what sideBySide() makes.
class PictureFolder
{
public:
    explicit PictureFolder(const AcEdVerbCall &call)
    {
        if (const auto folder = call.options.find(kPictures); folder != call.options.end())
            m_writer.emplace(folder->second, call.has(kOverwrite));
    }
    bool isWanted() const { return m_writer.has_value(); }
    bool isComplete() const { return m_isComplete; }

    void add(const QuillnoteObj3 &mark, const TwoPictures &pictures)
    {
        const QImage both = sideBySide(pictures);
        if (both.isNull()) {
            acutPrintf(QStringLiteral("\nmark %1: there is no picture to compare with")
                           .arg(markNumberText(mark.markNumber, mark.subNumber)));
            return;
        }
        QBuffer png;
        png.open(QIODevice::WriteOnly);
        m_isComplete = both.save(&png, "PNG") &&
                       m_writer->writeAs(mark, QStringLiteral("compared"), png.data()) && m_isComplete;
    }

private:
    std::optional<MarkPictureWriter> m_writer;
    bool m_isComplete = true;
};

} // namespace

/// Reviewers may be written over several lines; a result is one.
static QString inOneLine(const QString &reviewer)
{
    const QString name = reviewer.simplified();
    return name.isEmpty() ? QString::fromUtf16(kUnnamedReviewer) : name;
}

static QJsonObject placeJson(AcDbObjectId mark, const QString &number, const QString &reviewer)
{
    const AcDbObjectPointer<QuillnoteObj3> opened(mark, AcDb::kForRead);
    return {{QStringLiteral("handle"), QString::number(mark.handle().value, 16).toUpper()},
            {QStringLiteral("number"), number},
            {QStringLiteral("reviewer"), reviewer},
            {QStringLiteral("layout"), opened ? acdbLayoutName(opened->blockId()) : QString()}};
}

// Since the snapshots -----------------------------------------------------------------------------

static void printChange(const ChangedTarget &change, bool json)
{
    if (json) {
        QJsonObject object = placeJson(change.mark, change.number, change.reviewer);
        object.insert(QStringLiteral("file"), curDoc()->fileName());
        object.insert(QStringLiteral("countBefore"), qint64(change.countBefore));
        object.insert(QStringLiteral("countNow"), qint64(change.countNow));
        object.insert(QStringLiteral("gone"), qint64(change.gone));
        object.insert(QStringLiteral("added"), qint64(change.added));
        acedPrintResult(object);
        return;
    }
    const QString entities = change.gone + change.added == 0
                                 ? QStringLiteral("the same entities, changed")
                                 : QStringLiteral("%1 gone, %2 new").arg(change.gone).arg(change.added);
    acedPrintResult(QStringLiteral("%1 %2: %3 entities before, %4 now; %5\n")
                        .arg(change.number, inOneLine(change.reviewer))
                        .arg(change.countBefore)
                        .arg(change.countNow)
                        .arg(entities));
}

static int compareWithSnapshots(const AcEdVerbCall &call)
{
    AcDbDatabase &database = *acdbCurDwg();
    TargetComparison found = compareTargets(database, collectAllMarks(database).ids);
    if (found.withoutSnapshot > 0)
        acutPrintf(QStringLiteral("\n%1 marks with a leader have no snapshot to compare with")
                       .arg(found.withoutSnapshot));
    PictureFolder pictures(call);
    for (const ChangedTarget &change : found.changed) {
        printChange(change, call.json);
        const AcDbObjectPointer<QuillnoteObj3> mark(pictures.isWanted() ? change.mark : AcDbObjectId(),
                                                    AcDb::kForRead);
        if (mark)
            pictures.add(*mark, storedAndNow(database, *mark));
    }
    const bool anyChanged = !found.changed.empty();
    if (call.has(kOutput))
        saySkippedMarks(markCorrected(found.changed), found.changed.size());
    if (!pictures.isComplete())
        return 2;
    return anyChanged ? 1 : 0;
}

// Between two drawings ----------------------------------------------------------------------------

namespace
{

/// Another drawing that is open for a while, beside the current one.
class OtherDrawing
{
public:
    explicit OtherDrawing(const QString &path) : m_current(curDoc())
    {
        const auto opened = acDocManager()->openDocument(path, AcApOpenAs::readOnly);
        if (opened)
            m_other = *opened;
        else
            acutPrintf(u'\n' + opened.error());
        acDocManager()->activateDocument(m_current);
    }
    ~OtherDrawing()
    {
        if (m_other && m_other != m_current)
            acDocManager()->closeDocument(m_other);
    }
    OtherDrawing(const OtherDrawing &) = delete;
    OtherDrawing &operator=(const OtherDrawing &) = delete;

    AcDbDatabase *database() const { return m_other ? m_other->database() : nullptr; }

private:
    AcApDocument *m_current;
    AcApDocument *m_other = nullptr;
};

struct PlaceResult {
    QString number;
    QString reviewer;
    PlaceDifference difference;
};

} // namespace

static void printPlace(const ComparedPlace &place, const PlaceResult &result, const AcEdVerbCall &call)
{
    const PlaceDifference &differs = result.difference;
    if (call.json) {
        QJsonObject object = placeJson(place.mark, result.number, result.reviewer);
        object.insert(QStringLiteral("file"), curDoc()->fileName());
        object.insert(QStringLiteral("with"), call.options.at(kWith));
        object.insert(QStringLiteral("markIn"),
                      place.isOfOld ? QStringLiteral("old") : QStringLiteral("new"));
        object.insert(QStringLiteral("differs"), differs.any());
        object.insert(QStringLiteral("removed"), qint64(differs.removed));
        object.insert(QStringLiteral("added"), qint64(differs.added));
        object.insert(QStringLiteral("changed"), qint64(differs.changed));
        acedPrintResult(object);
        return;
    }
    const QString what = !differs.any() ? QStringLiteral("the same")
                                        : QStringLiteral("differs: %1 removed, %2 added, %3 changed")
                                              .arg(differs.removed)
                                              .arg(differs.added)
                                              .arg(differs.changed);
    acedPrintResult(QStringLiteral("%1 %2: %3\n").arg(result.number, inOneLine(result.reviewer), what));
}

static int compareWithDrawing(const AcEdVerbCall &call)
{
    if (call.has(kOutput)) {
        acutPrintf(QStringLiteral("\n-o does not go together with --with: nothing is changed"));
        return 2;
    }
    const OtherDrawing old(call.options.at(kWith));
    if (!old.database())
        return 2;
    AcDbDatabase &database = *acdbCurDwg();
    PlaceComparer comparer(*old.database(), database);
    PictureFolder pictures(call);
    bool anyDiffers = false;
    const std::vector<ComparedPlace> places = comparedPlaces(*old.database(), database);
    if (places.empty())
        acutPrintf(QStringLiteral("\nneither drawing has a mark"));
    for (const ComparedPlace &place : places) {
        const AcDbObjectPointer<QuillnoteObj3> mark(place.mark, AcDb::kForRead);
        const PlaceResult result{markNumberText(mark->markNumber, mark->subNumber), mark->suggestionName,
                                 comparer.compare(place)};
        printPlace(place, result, call);
        anyDiffers = anyDiffers || result.difference.any();
        if (pictures.isWanted())
            pictures.add(*mark, oldAndNew(*old.database(), database, place, *mark));
    }
    if (!pictures.isComplete())
        return 2;
    return anyDiffers ? 1 : 0;
}

AcEdVerb compareVerb()
{
    AcEdVerb verb;
    verb.name = QStringLiteral("compare");
    verb.help =
        QStringLiteral("Tell which marked places have changed since their snapshots were taken, or between "
                       "two drawings");
    verb.options = {
        {kWith, QStringLiteral("OLD"), QStringLiteral("Compare each marked place with this drawing.")},
        {kPictures, QStringLiteral("DIR"),
         QStringLiteral("Write then and now side by side into this folder, what differs coloured.")}};
    verb.saving = AcEdVerbSaving::optional;
    verb.run = [](const AcEdVerbCall &call) {
        return call.has(kWith) ? compareWithDrawing(call) : compareWithSnapshots(call);
    };
    return verb;
}

// Refreshing --------------------------------------------------------------------------------------

static int refresh(const AcEdVerbCall &call)
{
    const auto marks = marksToRefresh(*acdbCurDwg());
    if (!marks)
        return 0;
    const auto isOpenToAll = [](const QString &hash) {
        return hash.isEmpty() || sameHash(hash, unlockedHash());
    };
    const RefreshResult result = refreshSnapshots(marks->ids, isOpenToAll);
    if (call.json)
        acedPrintResult(QJsonObject{{QStringLiteral("file"), curDoc()->fileName()},
                                    {QStringLiteral("refreshed"), result.refreshed},
                                    {QStringLiteral("skipped"), result.skipped}});
    else
        acedPrintResult(
            QStringLiteral("%1 refreshed, %2 left as they were\n").arg(result.refreshed).arg(result.skipped));
    if (result.skipped > 0)
        acutPrintf(
            QStringLiteral("\nmarks with a password and marks on locked layers stay as they are; the command "
                           "QN3_freshSnapshot asks for passwords"));
    return 0;
}

AcEdVerb refreshVerb()
{
    AcEdVerb verb;
    verb.name = QStringLiteral("refresh");
    verb.help = QStringLiteral("Take the snapshots of your marks anew");
    verb.saving = AcEdVerbSaving::required;
    verb.run = refresh;
    return verb;
}
