// Documents: the drawings that are open, which one is current, who may write to it.
#pragma once

#include "host/acap/filelock.h"
#include "host/acdb/dbdatabase.h"
#include "host/acge/geview.h"
#include "host/base/attachments.h"
#include "host/base/file_stamp.h"
#include "host/base/listeners.h"
#include "host/base/progress.h"
#include "host/base/result.h"

#include <QString>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace base
{
struct WrittenFile;
}

namespace AcAp
{
enum DocLockMode : int {
    kNone = 0x00,
    kAutoWrite = 0x01,
    kNotLocked = 0x02,
    kWrite = 0x04,
    kRead = 0x20,
    kXWrite = 0x40
};
} // namespace AcAp

/// A user coordinate system.
struct AcApUcs {
    AcGePoint3d origin;
    AcGeVector3d xAxis = AcGeVector3d::kXAxis;
    AcGeVector3d yAxis = AcGeVector3d::kYAxis;
};

/// How a space of a drawing looked when another one was made current.
struct AcApSpaceState {
    AcGeView view;
    AcApUcs ucs;
};

/// The viewport of a sheet that was entered: the sheet stays on the screen, model space is current.
struct AcApEnteredViewport {
    AcDbObjectId sheet;    ///< Block record; null while none is entered.
    AcDbObjectId viewport; ///< VIEWPORT entity.
    int number = 0;        ///< CVPORT
};

/// How the file of an open drawing differs from what was read or last written.
enum class AcApFileChange {
    none,
    changed, ///< Somebody wrote it.
    missing,
};

class AcApDocument
{
public:
    AcDbDatabase *database() const { return m_database.get(); }
    /// Full path; empty for a drawing that was never saved.
    const QString &fileName() const { return m_fileName; }
    bool isNamedDrawing() const { return !m_fileName.isEmpty(); }
    /// "plan.dxf", or "Drawing1.dxf" before the first save.
    QString docTitle() const;
    /// Differs from what was opened or last saved (DBMOD); not when all changes were undone.
    bool isModified() const;

    /// Of the file as it was read or last written; none for a drawing without one.
    const std::optional<base::FileStamp> &fileStamp() const { return m_stamp; }

    AcAp::DocLockMode lockMode() const { return m_lockMode; }

    /// Somebody else edits the file: it is not saved under its own name while he does.
    bool isReadOnly() const { return m_barredBy.has_value(); }
    /// What became of the wish for a lock file, which the user should hear of; none when nobody wished for
    /// one.
    std::optional<AcApFileLock::Result> lockResult() const { return m_lockResult; }
    /// Who had the lock that was refused or taken over.
    const AcApLockHolder &lockHolder() const { return m_fileLock.holder(); }

    /// Of the current space. In an entered viewport: how model space would have to be seen so that it lies on
    /// the screen as it does through the viewport.
    AcGeView &view() { return m_view; }
    const AcGeView &view() const { return m_view; }
    AcApUcs &ucs() { return m_ucs; }
    const AcApUcs &ucs() const { return m_ucs; }
    AcApEnteredViewport &enteredViewport() { return m_enteredViewport; }
    const AcApEnteredViewport &enteredViewport() const { return m_enteredViewport; }
    /// Of the spaces that were current before, by block record.
    std::map<AcDbObjectId, AcApSpaceState> &otherSpaces() { return m_otherSpaces; }
    const std::map<AcDbObjectId, AcApSpaceState> &otherSpaces() const { return m_otherSpaces; }
    /// What was seen before, the last one last, by space or entered viewport (acedRememberView).
    std::map<AcDbObjectId, std::vector<AcGeView>> &earlierViews() { return m_earlierViews; }
    /// Entities selected before a command (pick first).
    std::vector<AcDbObjectId> &pickSet() { return m_pickSet; }
    /// The last selection set of an editing command ("Previous").
    std::vector<AcDbObjectId> &previousSet() { return m_previousSet; }
    /// What others keep of the document; ends with it.
    base::Attachments &attachments() { return m_attachments; }

private:
    friend class AcApDocManager;

    std::unique_ptr<AcDbDatabase> m_database;
    QString m_fileName;
    int m_number = 1;
    void settleFolder();

    std::uint64_t m_savedState = 0;         ///< AcDbDatabase::editState().
    std::optional<base::FileStamp> m_stamp; ///< Of the file as it was read or written.
    bool m_stampIsYoung = false;            ///< The file may have been written again at the same time.
    std::function<std::uint64_t()>
        m_contentDigest; ///< Of the file's content then; null when it is not known.
    AcApFileLock m_fileLock;
    std::optional<AcApLockHolder> m_barredBy;
    std::optional<AcApFileLock::Result> m_lockResult;
    AcAp::DocLockMode m_lockMode = AcAp::kNone;
    std::vector<AcAp::DocLockMode> m_locks; ///< Those held, the last one last.
    AcGeView m_view;
    AcApUcs m_ucs;
    AcApEnteredViewport m_enteredViewport;
    std::map<AcDbObjectId, AcApSpaceState> m_otherSpaces;
    std::map<AcDbObjectId, std::vector<AcGeView>> m_earlierViews;
    std::vector<AcDbObjectId> m_pickSet;
    std::vector<AcDbObjectId> m_previousSet;
    base::Attachments m_attachments;
};

class AcApDocManagerReactor
{
public:
    virtual ~AcApDocManagerReactor() = default;
    virtual void documentCreated(AcApDocument *) {}
    virtual void documentToBeDestroyed(AcApDocument *) {}
    virtual void documentToBeActivated(AcApDocument *) {}
    virtual void documentActivated(AcApDocument *) {}
    virtual void documentToBeDeactivated(AcApDocument *) {}
    virtual void documentLockModeChanged(AcApDocument *) {}
    /// Before the drawing is saved, and before it is asked whether it has changes: panels store what a user
    /// has typed for it. Saving says so.
    virtual void inputWanted(AcApDocument *, bool /*forSaving*/) {}
    /// Written under its own name.
    virtual void documentSaved(AcApDocument *) {}
};

/// What opening does about a drawing that somebody else edits, when files are locked.
enum class AcApOpenAs {
    editable, ///< Read-only if somebody else has it.
    readOnly, ///< Without a lock of our own.
    takeOver, ///< The other's lock is taken from him; he cannot save any more.
};
/// What saving does about a file that somebody wrote since it was read. A file that is written during the
/// saving is not overwritten whatever was said.
enum class AcApOverwriteChanged {
    no,
    yes,
    nothing, ///< There must be no such file at all.
};

/// A drawing that was saved.
struct AcApSaved {
    QString note; ///< What of the file could not be kept, as a sentence; mostly empty.
};

/// All open documents. Opening tells the modules that a drawing was loaded (AcRx::kLoadDwgMsg).
class AcApDocManager
{
public:
    AcApDocManager();
    ~AcApDocManager();

    AcApDocument *curDocument() const { return m_current; }
    const std::vector<std::unique_ptr<AcApDocument>> &documents() const { return m_documents; }
    AcApDocument *document(const AcDbDatabase *database) const;
    /// A copy of the list, for callers that may change it.
    std::vector<AcApDocument *> allDocuments() const;
    /// For pointers that may have lost their document.
    bool isOpen(const AcApDocument *document) const;

    /// Opens a drawing file (format by content) and makes it current. A file that is open already is
    /// made current. The error is a sentence with file, line and reason.
    base::Result<AcApDocument *, QString> openDocument(const QString &path,
                                                       AcApOpenAs as = AcApOpenAs::editable);
    /// Opens the content of `copy` as unsaved changes of the drawing `original`, or of one without a name.
    /// The file of the drawing counts as changed by somebody when it is not the one that the copy grew from;
    /// where that is not known, when it is newer than the copy.
    base::Result<AcApDocument *, QString>
    openCopy(const QString &copy, const QString &original,
             const std::optional<base::FileStamp> &grewFrom = std::nullopt);
    /// Opens the file of an open drawing anew, whose changes are lost. When the file cannot be read the
    /// drawing stays as it is.
    base::Result<AcApDocument *, QString> rereadDocument(AcApDocument *document);
    /// A new drawing from the built-in template.
    AcApDocument *newDocument();
    /// A document over a database made elsewhere (tests).
    AcApDocument *addDocument(std::unique_ptr<AcDbDatabase> database, const QString &fileName);
    /// Saves under the document's name or under `path`, which becomes its name unless `copyOnly`. Refuses a
    /// file that somebody else has open for editing or is saving, and the document's own when somebody wrote
    /// it since; the error says who and what. While it writes it holds the file's lock, also where
    /// locks are not wanted.
    base::Result<AcApSaved, QString> saveDocument(AcApDocument *document, const QString &path,
                                                  bool copyOnly = false,
                                                  AcApOverwriteChanged overwrite = AcApOverwriteChanged::no);
    /// Why a drawing cannot be saved in the format of its file, and what to do instead; empty when it can.
    QString whyNotSaved(const AcApDocument &document) const;
    /// The ending of a name that the drawing can be saved under, without the dot.
    QString suffixToSave(const AcApDocument &document) const;
    /// What saving under a name would lose where its ending asks for another format; a sentence each.
    QStringList lossesOfSaving(const AcApDocument &document, const QString &path) const;
    AcApFileChange changedOnDisk(const AcApDocument &document) const;
    /// Has what a user typed in other windows put into the drawing, so that isModified() tells of it.
    void gatherInput(AcApDocument *document);
    /// From now on drawings that are opened for editing keep a lock file as long as they are open; the window
    /// wants that, scripts do not.
    void setLocksFiles(bool locks) { m_locksFiles = locks; }
    /// Gives up all lock files: for a program that is about to be ended from outside.
    void giveBackLocks();

    /// Hears how far opening and saving are, at most 30 times a second, and with an empty text at the end.
    /// False stops the work.
    void setProgress(base::ProgressTeller::Listener listener) { m_progress = std::move(listener); }
    const base::ProgressTeller::Listener &progress() const { return m_progress; }
    /// The last opening or saving ended because progress said no.
    bool wasStopped() const { return m_wasStopped; }
    /// A drawing is being opened or saved; reactors and callbacks must leave the documents alone.
    bool isBusy() const { return m_isBusy; }

    /// Closes without saving; while a drawing is being opened or saved it does nothing.
    void closeDocument(AcApDocument *document);
    void activateDocument(AcApDocument *document);

    /// Locks nest; eLockViolation when the mode cannot be given.
    Acad::ErrorStatus lockDocument(AcApDocument *document, AcAp::DocLockMode mode = AcAp::kWrite);
    Acad::ErrorStatus unlockDocument(AcApDocument *document);

    void addReactor(AcApDocManagerReactor *reactor) { m_reactors.add(reactor); }
    void removeReactor(AcApDocManagerReactor *reactor) { m_reactors.remove(reactor); }

private:
    AcApDocument *adopt(std::unique_ptr<AcDbDatabase> database, const QString &fileName);
    AcApDocument *adopt(std::unique_ptr<AcApDocument> document);
    template <class Work>
    auto withProgress(const QString &what, Work work);
    /// Takes no lock without `as`.
    base::Result<std::unique_ptr<AcApDocument>, QString> load(const QString &name, const QString &content,
                                                              std::optional<AcApOpenAs> as);
    AcApDocument *documentOfFile(const QString &file) const;
    void lockFile(AcApDocument &document, AcApOpenAs as);
    base::Result<void, QString> maySave(AcApDocument &document, const QString &target,
                                        AcApOverwriteChanged overwrite, AcApFileLock &whileSaving);
    void rememberFile(AcApDocument &document, const base::WrittenFile &written);
    void settleSaved(AcApDocument &document, const QString &target, std::uint64_t state);
    void showLockMode(AcApDocument *document);

    std::vector<std::unique_ptr<AcApDocument>> m_documents;
    AcApDocument *m_current = nullptr;
    int m_created = 0;
    bool m_locksFiles = false;
    bool m_isBusy = false;
    bool m_wasStopped = false;
    base::ProgressTeller::Listener m_progress;
    base::Listeners<AcApDocManagerReactor> m_reactors;
};

/// The document manager of the process.
AcApDocManager *acDocManager();
/// Document and database of the running command; null when nothing is open.
AcApDocument *curDoc();
AcDbDatabase *acdbCurDwg();

/// A write lock for the life of a scope; modeless windows take one around each change.
class AcAxDocLock
{
public:
    explicit AcAxDocLock(AcApDocument *document, AcAp::DocLockMode mode = AcAp::kWrite);
    ~AcAxDocLock();
    AcAxDocLock(const AcAxDocLock &) = delete;
    AcAxDocLock &operator=(const AcAxDocLock &) = delete;
    Acad::ErrorStatus lockStatus() const { return m_status; }

private:
    AcApDocument *m_document;
    Acad::ErrorStatus m_status;
};
