// Documents: the drawings that are open, which one is current, who may write to it.
#pragma once

#include "host/acdb/dbdatabase.h"
#include "host/base/result.h"

#include <QString>

#include <map>
#include <memory>
#include <vector>

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

/// What part of a drawing is on the screen, as every view of a document keeps it. Screen and console
/// share it; the console's view is a raster of the same size with no window around it.
struct AcApView {
    AcGePoint3d centre{0.0, 0.0, 0.0}; ///< Middle of the view, world coordinates.
    double height = 297.0;             ///< World units from the lower to the upper edge.
    double twist = 0.0; ///< Radians; the drawing appears turned counter-clockwise by it (VIEWTWIST).
    int pixelWidth = 1600;
    int pixelHeight = 1000;

    double pixelSize() const { return height / pixelHeight; }
    double width() const { return pixelSize() * pixelWidth; }
};

/// A user coordinate system.
struct AcApUcs {
    AcGePoint3d origin;
    AcGeVector3d xAxis = AcGeVector3d::kXAxis;
    AcGeVector3d yAxis = AcGeVector3d::kYAxis;
};

/// How a space of a drawing looked when another one was made current.
struct AcApSpaceState {
    AcApView view;
    AcApUcs ucs;
};

/// The viewport of a sheet that was entered: the sheet stays on the screen, model space is current.
struct AcApEnteredViewport {
    AcDbObjectId sheet;    ///< Block record; null while none is entered.
    AcDbObjectId viewport; ///< VIEWPORT entity.
    int number = 0;        ///< CVPORT
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
    /// Changes since opening or the last save (DBMOD).
    bool isModified() const;

    AcAp::DocLockMode lockMode() const { return m_lockMode; }

    /// Of the current space. In an entered viewport: how model space would have to be seen so that it lies on
    /// the screen as it does through the viewport.
    AcApView &view() { return m_view; }
    const AcApView &view() const { return m_view; }
    AcApUcs &ucs() { return m_ucs; }
    const AcApUcs &ucs() const { return m_ucs; }
    AcApEnteredViewport &enteredViewport() { return m_enteredViewport; }
    const AcApEnteredViewport &enteredViewport() const { return m_enteredViewport; }
    /// Of the spaces that were current before, by block record.
    std::map<AcDbObjectId, AcApSpaceState> &otherSpaces() { return m_otherSpaces; }
    const std::map<AcDbObjectId, AcApSpaceState> &otherSpaces() const { return m_otherSpaces; }
    /// Entities selected before a command (pick first).
    std::vector<AcDbObjectId> &pickSet() { return m_pickSet; }
    /// The last selection set of an editing command ("Previous").
    std::vector<AcDbObjectId> &previousSet() { return m_previousSet; }

private:
    friend class AcApDocManager;

    std::unique_ptr<AcDbDatabase> m_database;
    QString m_fileName;
    int m_number = 1;
    std::uint64_t m_savedChangeCount = 0;
    AcAp::DocLockMode m_lockMode = AcAp::kNone;
    std::vector<AcAp::DocLockMode> m_locks; ///< Those held, the last one last.
    AcApView m_view;
    AcApUcs m_ucs;
    AcApEnteredViewport m_enteredViewport;
    std::map<AcDbObjectId, AcApSpaceState> m_otherSpaces;
    std::vector<AcDbObjectId> m_pickSet;
    std::vector<AcDbObjectId> m_previousSet;
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
};

/// All open documents. Opening tells the modules that a drawing was loaded (AcRx::kLoadDwgMsg).
class AcApDocManager
{
public:
    AcApDocManager();
    ~AcApDocManager();

    AcApDocument *curDocument() const { return m_current; }
    AcApDocument *mdiActiveDocument() const { return m_current; }
    const std::vector<std::unique_ptr<AcApDocument>> &documents() const { return m_documents; }
    AcApDocument *document(const AcDbDatabase *database) const;

    /// Opens a drawing file (format by content) and makes it current. A file that is open already is
    /// made current. The error is a sentence with file, line and reason.
    base::Result<AcApDocument *, QString> openDocument(const QString &path);
    /// A new drawing from the built-in template.
    AcApDocument *newDocument();
    /// A document over a database made elsewhere (tests).
    AcApDocument *addDocument(std::unique_ptr<AcDbDatabase> database, const QString &fileName);
    /// Saves under the document's name or under `path`, which becomes its name unless `copyOnly`.
    base::Result<bool, QString> saveDocument(AcApDocument *document, const QString &path,
                                             bool copyOnly = false);
    /// Closes without saving.
    void closeDocument(AcApDocument *document);
    void activateDocument(AcApDocument *document);

    /// Locks nest; eLockViolation when the mode cannot be given.
    Acad::ErrorStatus lockDocument(AcApDocument *document, AcAp::DocLockMode mode = AcAp::kWrite);
    Acad::ErrorStatus unlockDocument(AcApDocument *document);

    void addReactor(AcApDocManagerReactor *reactor);
    void removeReactor(AcApDocManagerReactor *reactor);

private:
    AcApDocument *adopt(std::unique_ptr<AcDbDatabase> database, const QString &fileName);
    void showLockMode(AcApDocument *document);
    template <class Notify>
    void notify(Notify event);

    std::vector<std::unique_ptr<AcApDocument>> m_documents;
    AcApDocument *m_current = nullptr;
    int m_created = 0;
    std::vector<AcApDocManagerReactor *> m_reactors;
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
