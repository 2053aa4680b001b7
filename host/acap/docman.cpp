#include "host/acap/docman.h"

#include "host/acap/docfile.h"
#include "host/acap/docview.h"
#include "host/acrx/rxmodule.h"
#include "host/base/assert.h"

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
    return m_database->changeCount() != m_savedChangeCount;
}

/// One spelling for one file: absolute, links resolved when the file exists.
static QString fullPath(const QString &path)
{
    const QFileInfo file(path);
    const QString canonical = file.canonicalFilePath();
    return canonical.isEmpty() ? file.absoluteFilePath() : canonical;
}

// Document manager --------------------------------------------------------------------------------

AcApDocManager::AcApDocManager() = default;
AcApDocManager::~AcApDocManager() = default;

template <class Notify>
void AcApDocManager::notify(Notify event)
{
    // A reactor may remove itself, or another one, while it is being told.
    const std::vector<AcApDocManagerReactor *> reactors = m_reactors;
    for (AcApDocManagerReactor *reactor : reactors) {
        if (std::find(m_reactors.begin(), m_reactors.end(), reactor) != m_reactors.end())
            event(*reactor);
    }
}

AcApDocument *AcApDocManager::document(const AcDbDatabase *database) const
{
    for (const auto &candidate : m_documents) {
        if (candidate->database() == database)
            return candidate.get();
    }
    return nullptr;
}

AcApDocument *AcApDocManager::adopt(std::unique_ptr<AcDbDatabase> database, const QString &fileName)
{
    QUILL_ASSERT(database);
    auto owned = std::make_unique<AcApDocument>();
    AcApDocument *const added = owned.get();
    added->m_database = std::move(database);
    added->m_fileName = fileName;
    added->m_savedChangeCount = added->m_database->changeCount();
    if (fileName.isEmpty())
        added->m_number = ++m_created;
    const AcDbObjectId space = added->m_database->currentSpaceId();
    acapRestoreView(*added->m_database, space, added->m_view);
    added->m_ucs = acapSavedUcs(*added->m_database, space);
    m_documents.push_back(std::move(owned));

    notify([added](AcApDocManagerReactor &reactor) { reactor.documentCreated(added); });
    activateDocument(added);
    acrxDynamicLinker()->broadcast(AcRx::kLoadDwgMsg);
    return added;
}

base::Result<AcApDocument *, QString> AcApDocManager::openDocument(const QString &path)
{
    const QString file = fullPath(path);
    for (const auto &opened : m_documents) {
        if (opened->m_fileName == file) {
            activateDocument(opened.get());
            return opened.get();
        }
    }
    auto database = acapReadDrawing(file);
    if (!database)
        return base::Failure{database.error()};
    return adopt(std::move(*database), file);
}

AcApDocument *AcApDocManager::newDocument()
{
    return adopt(acapTemplateDrawing(), {});
}

AcApDocument *AcApDocManager::addDocument(std::unique_ptr<AcDbDatabase> database, const QString &fileName)
{
    return adopt(std::move(database), fileName);
}

base::Result<bool, QString> AcApDocManager::saveDocument(AcApDocument *document, const QString &path,
                                                         bool copyOnly)
{
    const QString target = path.isEmpty() ? document->m_fileName : fullPath(path);
    if (target.isEmpty())
        return base::Failure{
            QStringLiteral("%1: the drawing has no file name yet").arg(document->docTitle())};
    for (const auto &other : m_documents) {
        if (other.get() != document && other->m_fileName == target)
            return base::Failure{QStringLiteral("%1: the file is open as another document").arg(target)};
    }
    const auto written = acapWriteDrawing(*document->m_database, target);
    if (!written)
        return base::Failure{written.error()};
    if (!copyOnly) {
        document->m_fileName = fullPath(target);
        document->m_savedChangeCount = document->m_database->changeCount();
    }
    return true;
}

void AcApDocManager::activateDocument(AcApDocument *document)
{
    if (document == m_current)
        return;
    if (AcApDocument *const previous = m_current)
        notify([previous](AcApDocManagerReactor &reactor) { reactor.documentToBeDeactivated(previous); });
    notify([document](AcApDocManagerReactor &reactor) { reactor.documentToBeActivated(document); });
    m_current = document;
    notify([document](AcApDocManagerReactor &reactor) { reactor.documentActivated(document); });
}

void AcApDocManager::closeDocument(AcApDocument *document)
{
    const auto owner =
        std::find_if(m_documents.begin(), m_documents.end(),
                     [document](const auto &candidate) { return candidate.get() == document; });
    if (owner == m_documents.end())
        return;
    // Whoever is told while the document goes may still look at it as the current one.
    const bool wasCurrent = document == m_current;
    if (wasCurrent) {
        acrxDynamicLinker()->broadcast(AcRx::kUnloadDwgMsg);
        notify([document](AcApDocManagerReactor &reactor) { reactor.documentToBeDeactivated(document); });
    }
    notify([document](AcApDocManagerReactor &reactor) { reactor.documentToBeDestroyed(document); });
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
        notify([document](AcApDocManagerReactor &reactor) { reactor.documentLockModeChanged(document); });
}

Acad::ErrorStatus AcApDocManager::lockDocument(AcApDocument *document, AcAp::DocLockMode mode)
{
    if (!document)
        return Acad::eNoDocument;
    if (strength(mode) == 0)
        return Acad::eInvalidInput;
    // An exclusive lock suffers no other beside it, whoever came first.
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

void AcApDocManager::addReactor(AcApDocManagerReactor *reactor)
{
    if (std::find(m_reactors.begin(), m_reactors.end(), reactor) == m_reactors.end())
        m_reactors.push_back(reactor);
}

void AcApDocManager::removeReactor(AcApDocManagerReactor *reactor)
{
    std::erase(m_reactors, reactor);
}

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
