#include "host/acap/docman.h"

#include "host/acap/docfile.h"
#include "host/acap/docview.h"
#include "host/acrx/rxmodule.h"
#include "host/base/assert.h"
#include "host/base/atomic_file.h"
#include "host/base/host_text.h"
#include "host/base/path_name.h"
#include "host/formats/drawingformat.h"

#include <QDateTime>
#include <QFileInfo>

#include <algorithm>

// Documents ---------------------------------------------------------------------------------------

QString AcApDocument::docTitle() const
{
    if (isNamedDrawing())
        return QFileInfo(m_fileName).fileName();
    return QStringLiteral("Drawing%1.dxf").arg(m_number);
}

bool AcApDocument::isModified() const
{
    return m_database->editState() != m_savedState;
}

void AcApDocument::settleFolder()
{
    m_database->setFile(isNamedDrawing() ? m_fileName : QString());
}

/// No state of the drawing is the one in its file.
static constexpr std::uint64_t kNeverSaved = ~std::uint64_t(0);

// Document manager --------------------------------------------------------------------------------

AcApDocManager::AcApDocManager() = default;
AcApDocManager::~AcApDocManager() = default;

AcApDocument *AcApDocManager::document(const AcDbDatabase *database) const
{
    for (const auto &candidate : m_documents) {
        if (candidate->database() == database)
            return candidate.get();
    }
    return nullptr;
}

std::vector<AcApDocument *> AcApDocManager::allDocuments() const
{
    std::vector<AcApDocument *> all;
    for (const auto &document : m_documents)
        all.push_back(document.get());
    return all;
}

bool AcApDocManager::isOpen(const AcApDocument *document) const
{
    return std::ranges::any_of(m_documents, [=](const auto &each) { return each.get() == document; });
}

AcApDocument *AcApDocManager::adopt(std::unique_ptr<AcDbDatabase> database, const QString &fileName)
{
    auto document = std::make_unique<AcApDocument>();
    document->m_database = std::move(database);
    document->m_fileName = fileName;
    return adopt(std::move(document));
}

AcApDocument *AcApDocManager::adopt(std::unique_ptr<AcApDocument> document)
{
    QUILL_ASSERT(document->m_database);
    AcApDocument *const added = document.get();
    added->settleFolder();
    added->m_savedState = added->m_database->editState();
    if (!added->isNamedDrawing())
        added->m_number = ++m_created;
    acapRestoreLayout(*added->m_database);
    const AcDbObjectId space = added->m_database->currentSpaceId();
    acapRestoreView(*added->m_database, space, added->m_view);
    added->m_ucs = acapSavedUcs(*added->m_database, space);
    m_documents.push_back(std::move(document));

    m_reactors.tell([added](AcApDocManagerReactor &reactor) { reactor.documentCreated(added); });
    activateDocument(added);
    acrxDynamicLinker()->broadcast(AcRx::kLoadDwgMsg);
    return added;
}

AcApDocument *AcApDocManager::newDocument()
{
    return adopt(acapTemplateDrawing(), {});
}

AcApDocument *AcApDocManager::addDocument(std::unique_ptr<AcDbDatabase> database, const QString &fileName)
{
    return adopt(std::move(database), fileName);
}

// Opening and saving ------------------------------------------------------------------------------

/// Runs `work(progress)`; the listener hears of it.
template <class Work>
auto AcApDocManager::withProgress(const QString &what, Work work)
{
    m_isBusy = true;
    m_wasStopped = false;
    auto result = [&] {
        base::ProgressTeller teller(m_progress, what);
        return work([&](double share) {
            m_wasStopped = !teller.goesOn(share);
            return !m_wasStopped;
        });
    }();
    m_isBusy = false;
    return result;
}

void AcApDocManager::lockFile(AcApDocument &document, AcApOpenAs as)
{
    document.m_barredBy.reset();
    document.m_lockResult.reset();
    if (as == AcApOpenAs::readOnly) {
        document.m_barredBy = acapForeignLock(document.m_fileName).value_or(AcApLockHolder());
        return;
    }
    document.m_lockResult = document.m_fileLock.acquire(document.m_fileName, as == AcApOpenAs::takeOver);
    if (document.m_lockResult == AcApFileLock::refused)
        document.m_barredBy = document.m_fileLock.holder();
}

static QString busyReason(const QString &path)
{
    return Host::tr("%1: another drawing is being opened or saved").arg(path);
}

base::Result<std::unique_ptr<AcApDocument>, QString>
AcApDocManager::load(const QString &name, const QString &content, std::optional<AcApOpenAs> as)
{
    if (m_isBusy)
        return base::Failure{busyReason(content)};
    auto document = std::make_unique<AcApDocument>();
    document->m_fileName = name;
    document->m_stamp =
        base::fileStamp(name); // Before reading: what is written meanwhile counts as a change.
    const bool isYoung = document->m_stamp && document->m_stamp->isYoung();
    if (as && m_locksFiles && document->m_stamp)
        lockFile(*document, *as);
    auto database = withProgress(Host::tr("正在打开 %1").arg(QFileInfo(content).fileName()),
                                 [&](const base::Progress &p) { return acapReadDrawing(content, p); });
    if (!database)
        return base::Failure{database.error()};
    document->m_database = std::move(*database);
    document->m_stampIsYoung = isYoung;
    if (name == content)
        document->m_contentDigest = [read = document->database()] { return acapDigestAsRead(*read); };
    return document;
}

AcApDocument *AcApDocManager::documentOfFile(const QString &file) const
{
    for (const auto &candidate : m_documents) {
        if (!file.isEmpty() && candidate->m_fileName == file)
            return candidate.get();
    }
    return nullptr;
}

base::Result<AcApDocument *, QString> AcApDocManager::openDocument(const QString &path, AcApOpenAs as)
{
    const QString file = base::fullPath(path);
    if (AcApDocument *const opened = documentOfFile(file)) {
        activateDocument(opened);
        return opened;
    }
    auto loaded = load(file, file, as);
    if (!loaded)
        return base::Failure{loaded.error()};
    return adopt(std::move(*loaded));
}

base::Result<AcApDocument *, QString> AcApDocManager::rereadDocument(AcApDocument *document)
{
    const QString file = document->m_fileName;
    auto loaded = load(file, file, std::nullopt); // The lock, if any, is the open drawing's until it goes.
    if (!loaded)
        return base::Failure{loaded.error()};
    closeDocument(document);
    if (m_locksFiles && (*loaded)->m_stamp)
        lockFile(**loaded, AcApOpenAs::editable);
    return adopt(std::move(*loaded));
}

/// What a drawing takes for its file when it is opened from a copy; a stamp of no file at all counts every
/// file as changed.
static base::FileStamp stampBehindCopy(const QString &file, const std::optional<base::FileStamp> &present,
                                       const QString &copy, std::optional<base::FileStamp> grewFrom)
{
    if (grewFrom && present)
        grewFrom->device = present->device; // Numbers of devices change when the machine starts.
    if (grewFrom)
        return *grewFrom;
    const bool isNewer = QFileInfo(file).lastModified() > QFileInfo(copy).lastModified();
    return present && !isNewer ? *present : base::FileStamp();
}

base::Result<AcApDocument *, QString> AcApDocManager::openCopy(const QString &copy, const QString &original,
                                                               const std::optional<base::FileStamp> &grewFrom)
{
    const QString file = original.isEmpty() ? QString() : base::fullPath(original);
    if (documentOfFile(file))
        return base::Failure{Host::tr("%1: the drawing is open already").arg(file)};
    auto loaded = load(file, copy, AcApOpenAs::editable);
    if (!loaded)
        return base::Failure{loaded.error()};
    if (!file.isEmpty())
        (*loaded)->m_stamp = stampBehindCopy(file, (*loaded)->m_stamp, copy, grewFrom);
    AcApDocument *const opened = adopt(std::move(*loaded));
    opened->m_savedState = kNeverSaved;
    return opened;
}

AcApFileChange AcApDocManager::changedOnDisk(const AcApDocument &document) const
{
    if (!document.m_stamp)
        return AcApFileChange::none;
    const auto present = base::fileStamp(document.m_fileName);
    if (!present)
        return AcApFileChange::missing;
    return present == document.m_stamp ? AcApFileChange::none : AcApFileChange::changed;
}

static QString editedBy(const QString &target, const AcApLockHolder &holder)
{
    return Host::
        tr("%1: %2 has it open for editing or is saving it; try again when he is done, or save under another "
           "name")
            .arg(target, holder.text());
}

/// Size and time can agree although somebody wrote the file: when it was written just before it was read, or
/// when he set the time back. Then the content decides.
static bool isAsKnown(const QString &path, const base::FileStamp &known, bool isYoung,
                      const std::function<std::uint64_t()> &digest)
{
    const auto present = base::fileStamp(path);
    if (!present || *present != known)
        return false;
    const bool isTrusted = !isYoung && present->changed == known.changed;
    return isTrusted || !digest || base::fileDigest(path) == digest();
}

/// A lock counts against everybody who would write the file, and everybody takes it to write, scripts
/// included.
base::Result<void, QString> AcApDocManager::maySave(AcApDocument &document, const QString &target,
                                                    AcApOverwriteChanged overwrite, AcApFileLock &whileSaving)
{
    const bool isOwn = target == document.m_fileName;
    if (const AcApDocument *const other = documentOfFile(target); other && other != &document)
        return base::Failure{Host::tr("%1: the file is open as another document").arg(target)};
    if (const auto holder = acapForeignLock(target))
        return base::Failure{editedBy(target, *holder)};
    if (isOwn && overwrite == AcApOverwriteChanged::no && changedOnDisk(document) == AcApFileChange::changed)
        return base::Failure{base::FileError{base::FileError::Code::changed, 0, target}.text()};
    if (isOwn && document.m_fileLock.isHeld())
        return {};
    if (isOwn && m_locksFiles)
        lockFile(document, AcApOpenAs::editable); // The program that had it has left in the meantime.
    AcApFileLock &lock = isOwn && m_locksFiles ? document.m_fileLock : whileSaving;
    if (&lock == &whileSaving ? lock.acquire(target) == AcApFileLock::refused : document.isReadOnly())
        return base::Failure{editedBy(target, lock.holder())};
    return {};
}

void AcApDocManager::rememberFile(AcApDocument &document, const base::WrittenFile &written)
{
    document.m_stamp = written.stamp;
    document.m_stampIsYoung = true;
    document.m_contentDigest = [digest = written.digest] { return digest; };
}

/// After the file was written under the document's name, or under one that becomes its name.
void AcApDocManager::settleSaved(AcApDocument &document, const QString &target, std::uint64_t state)
{
    const QString name = base::fullPath(target);
    const bool isRenamed = std::exchange(document.m_fileName, name) != name;
    document.settleFolder();
    document.m_savedState = state;
    if (isRenamed) {
        document.m_fileLock.release();
        document.m_barredBy.reset();
        if (m_locksFiles)
            lockFile(document, AcApOpenAs::editable);
    }
    m_reactors.tell([&document](AcApDocManagerReactor &reactor) { reactor.documentSaved(&document); });
}

void AcApDocManager::gatherInput(AcApDocument *document)
{
    m_reactors.tell([document](AcApDocManagerReactor &reactor) { reactor.inputWanted(document, false); });
}

/// What the target must still be when it is replaced: what the document read or wrote, or what it is now.
static base::MayReplace whatIsMeant(const AcApDocument &document, const QString &target,
                                    AcApOverwriteChanged overwrite, const base::MayReplace &isOwnFile)
{
    if (overwrite == AcApOverwriteChanged::nothing)
        return [](const QString &) { return false; };
    if (overwrite == AcApOverwriteChanged::no && target == document.fileName() && document.fileStamp())
        return isOwnFile;
    const auto present = base::fileStamp(target);
    return [present](const QString &path) {
        const auto now = base::fileStamp(path);
        return now && present && now == present && now->changed == present->changed;
    };
}

static QString noteOf(const QString &target, const base::WrittenFile &written)
{
    if (written.notKept.isEmpty())
        return {};
    return Host::tr("%1 is saved, but could not keep %2")
        .arg(target, written.notKept.join(QStringLiteral(", ")));
}

base::Result<AcApSaved, QString> AcApDocManager::saveDocument(AcApDocument *document, const QString &path,
                                                              bool copyOnly, AcApOverwriteChanged overwrite)
{
    const QString target = path.isEmpty() ? document->m_fileName : base::fullPath(path);
    if (target.isEmpty())
        return base::Failure{Host::tr("%1: the drawing has no file name yet").arg(document->docTitle())};
    if (m_isBusy)
        return base::Failure{busyReason(target)};
    AcApFileLock whileSaving;
    if (const auto checked = maySave(*document, target, overwrite, whileSaving); !checked)
        return base::Failure{checked.error()};
    const base::MayReplace mayReplace =
        whatIsMeant(*document, target, overwrite, [document](const QString &file) {
            return isAsKnown(file, *document->m_stamp, document->m_stampIsYoung, document->m_contentDigest);
        });
    m_reactors.tell([document](AcApDocManagerReactor &reactor) { reactor.inputWanted(document, true); });
    const std::uint64_t state = document->m_database->editState();
    const auto written =
        withProgress(Host::tr("正在保存 %1").arg(QFileInfo(target).fileName()), [&](const base::Progress &p) {
            return acapWriteDrawing(*document->m_database, target, p, mayReplace);
        });
    if (!written)
        return base::Failure{written.error()};
    base::removeLeftTemporaryFiles(QFileInfo(target).path());
    const bool isOwn = base::fullPath(target) == document->m_fileName;
    if (!copyOnly || isOwn)
        rememberFile(*document, *written);
    if (!copyOnly) {
        whileSaving.release(); // The document may take the lock for as long as it is open.
        settleSaved(*document, target, state);
    }
    return AcApSaved{noteOf(target, *written)};
}

QString AcApDocManager::whyNotSaved(const AcApDocument &document) const
{
    const QString name = document.isNamedDrawing() ? document.fileName() : document.docTitle();
    const DrawingFormat *const format = drawingFormatToSave(*document.m_database, name);
    return format ? format->whyNotWritten(*document.m_database) : QString();
}

QString AcApDocManager::suffixToSave(const AcApDocument &document) const
{
    const QString own = QFileInfo(document.docTitle()).suffix();
    const DrawingFormat *const named = drawingFormatOfName(document.docTitle());
    if (!named || named->whyNotWritten(*document.m_database).isEmpty())
        return own;
    for (const DrawingFormat *const format : drawingFormats()) {
        if (format->whyNotWritten(*document.m_database).isEmpty())
            return format->suffix();
    }
    return own;
}

QStringList AcApDocManager::lossesOfSaving(const AcApDocument &document, const QString &path) const
{
    return acapLossesOfWriting(*document.m_database, path);
}

void AcApDocManager::giveBackLocks()
{
    for (const auto &document : m_documents)
        document->m_fileLock.release();
}

// Current and closed ------------------------------------------------------------------------------

void AcApDocManager::activateDocument(AcApDocument *document)
{
    if (document == m_current)
        return;
    if (AcApDocument *const previous = m_current)
        m_reactors.tell(
            [previous](AcApDocManagerReactor &reactor) { reactor.documentToBeDeactivated(previous); });
    m_reactors.tell([document](AcApDocManagerReactor &reactor) { reactor.documentToBeActivated(document); });
    m_current = document;
    m_reactors.tell([document](AcApDocManagerReactor &reactor) { reactor.documentActivated(document); });
}

void AcApDocManager::closeDocument(AcApDocument *document)
{
    const auto owner =
        std::find_if(m_documents.begin(), m_documents.end(),
                     [document](const auto &candidate) { return candidate.get() == document; });
    if (owner == m_documents.end() || m_isBusy)
        return;
    // Reactors that are told while the document goes may still look at it as the current one.
    const bool wasCurrent = document == m_current;
    if (wasCurrent) {
        acrxDynamicLinker()->broadcast(AcRx::kUnloadDwgMsg);
        m_reactors.tell(
            [document](AcApDocManagerReactor &reactor) { reactor.documentToBeDeactivated(document); });
    }
    m_reactors.tell([document](AcApDocManagerReactor &reactor) { reactor.documentToBeDestroyed(document); });
    if (wasCurrent)
        m_current = nullptr;
    m_documents.erase(std::find_if(m_documents.begin(), m_documents.end(), [document](const auto &candidate) {
        return candidate.get() == document;
    }));
    if (wasCurrent && !m_documents.empty())
        activateDocument(m_documents.back().get());
}

// Locks -------------------------------------------------------------------------------------------

/// The strength of a lock; a document shows its strongest.
static int strength(AcAp::DocLockMode mode)
{
    switch (mode) {
    case AcAp::kRead:
        return 1;
    case AcAp::kAutoWrite:
        return 2;
    case AcAp::kWrite:
        return 3;
    case AcAp::kXWrite:
        return 4;
    case AcAp::kNone:
    case AcAp::kNotLocked:
        break;
    }
    return 0;
}

static AcAp::DocLockMode strongest(const std::vector<AcAp::DocLockMode> &locks)
{
    AcAp::DocLockMode found = AcAp::kNone;
    for (const AcAp::DocLockMode mode : locks) {
        if (strength(mode) > strength(found))
            found = mode;
    }
    return found;
}

void AcApDocManager::showLockMode(AcApDocument *document)
{
    const AcAp::DocLockMode mode = strongest(document->m_locks);
    if (std::exchange(document->m_lockMode, mode) != mode)
        m_reactors.tell(
            [document](AcApDocManagerReactor &reactor) { reactor.documentLockModeChanged(document); });
}

Acad::ErrorStatus AcApDocManager::lockDocument(AcApDocument *document, AcAp::DocLockMode mode)
{
    if (!document)
        return Acad::eNoDocument;
    if (strength(mode) == 0)
        return Acad::eInvalidInput;
    // An exclusive lock suffers no other beside it, in either order.
    const bool held = !document->m_locks.empty();
    if (held && (mode == AcAp::kXWrite || document->m_lockMode == AcAp::kXWrite))
        return Acad::eLockViolation;
    document->m_locks.push_back(mode);
    showLockMode(document);
    return Acad::eOk;
}

Acad::ErrorStatus AcApDocManager::unlockDocument(AcApDocument *document)
{
    if (!document)
        return Acad::eNoDocument;
    if (document->m_locks.empty())
        return Acad::eLockViolation;
    document->m_locks.pop_back();
    showLockMode(document);
    return Acad::eOk;
}

AcAxDocLock::AcAxDocLock(AcApDocument *document, AcAp::DocLockMode mode)
    : m_document(document), m_status(acDocManager()->lockDocument(document, mode))
{
}

AcAxDocLock::~AcAxDocLock()
{
    if (m_status == Acad::eOk)
        acDocManager()->unlockDocument(m_document);
}

// Reactors and the process's manager --------------------------------------------------------------

AcApDocManager *acDocManager()
{
    static AcApDocManager manager;
    return &manager;
}

AcApDocument *curDoc()
{
    return acDocManager()->curDocument();
}

AcDbDatabase *acdbCurDwg()
{
    const AcApDocument *const document = curDoc();
    return document ? document->database() : nullptr;
}
