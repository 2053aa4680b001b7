// AcDbDatabase: one drawing in memory.
//
// Source bytes and overlay: an object is its bytes in the drawing source until somebody writes to it;
// from then on the resident object is the truth. Reading makes an object from its bytes and forgets it
// again at closing. What nobody touches is never decoded and is saved as it came.
//
// All operations run on one thread. Ids stay good for the life of the database.
#pragma once

#include "host/acdb/dbid.h"
#include "host/acdb/dbsource.h"
#include "host/acdb/errorstatus.h"
#include "host/acdb/resbuf.h"
#include "host/base/attachments.h"
#include "host/base/listeners.h"

#include <array>
#include <functional>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <vector>

class AcDbDatabaseReactor;
class AcDbLoader;
class AcDbUndo;
class AcDbXrefs;

namespace AcDb
{
/// For notify the host alone opens objects, while it tells reactors of them.
enum OpenMode { kForRead, kForWrite };
} // namespace AcDb

enum class SymbolTable { viewport, linetype, layer, textStyle, view, ucs, appId, dimStyle, block };
inline constexpr std::size_t kSymbolTableCount = 9;

/// A class record of the drawing's CLASSES section.
struct DrawingClass {
    QByteArray dxfName;
    QString className;
    QString application;
    int proxyFlags = 0;
    bool wasProxy = false;
    bool isEntity = false;
    bool fromSource = false; ///< Stands in the file already.
};

/// The entities of one block definition, model space or layout, in drawing order. Entities that others
/// own (attributes, vertices) are not listed: they follow their owner among the stubs.
struct BlockContents {
    AcDbStub *blockBegin = nullptr; ///< BLOCK; null when the file has none.
    AcDbStub *blockEnd = nullptr;   ///< ENDBLK
    std::vector<std::uint32_t> entities;
};

/// The kinds that one drawing names. Their numbers go with it, so that no drawing takes those of the next
/// ones.
class AcDbDrawingKinds
{
public:
    AcDbDrawingKinds() = default;
    ~AcDbDrawingKinds();
    AcDbDrawingKinds(const AcDbDrawingKinds &) = delete;
    AcDbDrawingKinds &operator=(const AcDbDrawingKinds &) = delete;
    /// A name that has no number yet gets one; 0 when there is none left: such kinds keep their bytes, but
    /// are told apart by nobody.
    AcDbKind take(const QByteArray &dxfName);

private:
    std::unordered_set<AcDbKind> m_taken;
};

class AcDbDatabase
{
public:
    AcDbDatabase();
    ~AcDbDatabase();
    AcDbDatabase(const AcDbDatabase &) = delete;
    AcDbDatabase &operator=(const AcDbDatabase &) = delete;

    /// Null only before a loader has filled the database.
    const DrawingSource *source() const { return m_source.get(); }
    DrawingVersion version() const;
    /// What opening had to mend, one sentence each, in file order.
    const QStringList &repairs() const { return m_repairs; }

    // Objects ------------------------------------------------------------------------------------
    AcDbObjectId getAcDbObjectId(AcDbHandle handle) const;
    /// All objects, erased ones included; index 0 is not used.
    std::uint32_t stubCount() const { return m_stubCount; }
    AcDbStub *stub(std::uint32_t index) const { return &m_chunks[index / kChunk][index % kChunk]; }

    /// The number of a kind that this drawing names.
    AcDbKind kindNamed(const QByteArray &dxfName) { return m_kinds.take(dxfName); }

    /// Opens an object. eWasErased unless `openErased`; eWasOpenForWrite while a writer has it;
    /// eWasOpenForRead when a writer is asked for while readers have it; eWasOpenForNotify while
    /// reactors are told of it (they upgrade); what mayChange() says for writing. The object belongs to the
    /// database.
    Acad::ErrorStatus openObject(AcDbObject *&object, AcDbObjectId id, AcDb::OpenMode mode,
                                 bool openErased = false);
    /// eOnLockedLayer for an entity on a locked layer; eNotAllowedForThisProxy for one whose class is
    /// missing, or refused it, and allows nothing without it.
    Acad::ErrorStatus mayChange(const AcDbObject &object) const;
    /// Takes an object that is in no database, gives it a handle and an owner, and leaves it open for
    /// write. Entities go through AcDbBlockTableRecord::appendAcDbEntity instead.
    Acad::ErrorStatus addAcDbObject(AcDbObject *object, AcDbObjectId owner, AcDbObjectId *id = nullptr);
    /// The folder of the drawing's file, where relative names of other files count from; empty without a
    /// file.
    const QString &folder() const { return m_folder; }
    void setFolder(const QString &folder) { m_folder = folder; }
    /// The drawing's file, a whole path; empty without one. Its folder goes with it.
    const QString &file() const { return m_file; }
    void setFile(const QString &file);
    /// The other drawings that this one shows.
    AcDbXrefs &xrefs() const;
    /// The handle that the next new object gets ($HANDSEED).
    AcDbHandle handseed() const { return {freeHandle(m_nextHandle)}; }
    /// The first handle from `from` on that no object has; from 1 on when nothing is left above.
    std::uint64_t freeHandle(std::uint64_t from) const;

    // Structure ----------------------------------------------------------------------------------
    /// The table's own object; a null id when the file has none (R12).
    AcDbObjectId symbolTableId(SymbolTable table) const;
    /// Records in table order, erased ones included.
    const std::vector<std::uint32_t> &tableRecords(SymbolTable table) const;
    /// A record by name, ignoring letter case; null when missing or erased.
    AcDbObjectId tableRecord(SymbolTable table, const QString &name) const;
    AcDbObjectId namedObjectsDictionaryId() const { return m_namedObjects; }
    /// For drawings that came without one; see acdbEnsureNamedObjects().
    void setNamedObjectsDictionary(AcDbObjectId dictionary) { m_namedObjects = dictionary; }

    AcDbObjectId modelSpaceId() const;
    /// The paper space that "*Paper_Space" names: the layout that is current when TILEMODE is 0.
    AcDbObjectId paperSpaceId() const;
    /// The space that new entities go to: model or paper space by $TILEMODE, unless another layout was set.
    AcDbObjectId currentSpaceId() const;
    /// Block record of a layout; null goes back to the rule above.
    void setCurrentSpace(AcDbObjectId layoutBlock) { m_currentSpace = layoutBlock; }
    /// Contents of a block record; null when `blockRecord` is none.
    const BlockContents *blockContents(AcDbObjectId blockRecord) const;

    const std::vector<DrawingClass> &classes() const { return m_classes; }
    /// Class records of custom classes that this drawing's objects need and that are not there yet are
    /// added when such an object is added.
    void ensureClass(const AcRxClass &added);

    // Drawing variables --------------------------------------------------------------------------
    /// Names carry the dollar sign: "$CLAYER". Null when the drawing does not have the variable.
    const ResbufList *headerVariable(const QByteArray &name) const;
    QString headerText(const QByteArray &name, const QString &fallback = {}) const;
    std::int64_t headerInteger(const QByteArray &name, std::int64_t fallback = 0) const;
    double headerReal(const QByteArray &name, double fallback = 0.0) const;
    AcGePoint3d headerPoint(const QByteArray &name, AcGePoint3d fallback = {}) const;
    /// Sets or adds a variable; part of the current undo group.
    void setHeaderVariable(const QByteArray &name, ResbufList groups);
    /// Names in file order, then the added ones.
    const std::vector<QByteArray> &headerNames() const { return m_headerNames; }
    /// Variables that differ from the source, in the order of their first change.
    std::vector<QByteArray> changedHeaderNames() const;

    // Changes ------------------------------------------------------------------------------------
    AcDbUndo &undo() { return *m_undo; }
    /// Stubs whose saved form differs from the source: changed, erased, new. Order of first change.
    std::vector<AcDbStub *> changedStubs() const;
    /// True when saving would write anything else than the source bytes.
    bool hasChanges() const;
    /// Counts every change to anything; equal numbers mean that nothing happened in between.
    std::uint64_t changeCount() const { return m_changeCount; }
    /// Names a state of the drawing: undoing and redoing come back to the same number. What is not recorded
    /// for undo (which layout is shown, carriers made for saving) is no other state.
    std::uint64_t editState() const { return m_editState; }

    void addReactor(AcDbDatabaseReactor *reactor) { m_reactors.add(reactor); }
    void removeReactor(AcDbDatabaseReactor *reactor) { m_reactors.remove(reactor); }

    /// What others keep of the drawing; ends with it, while the drawing is still whole.
    base::Attachments &attachments() { return m_attachments; }
    const base::Attachments &attachments() const { return m_attachments; }

    /// The object's groups in file form, custom objects included: what saving writes.
    ResbufList fileGroups(const AcDbStub &stub) const;

private:
    friend class AcDbLoader;
    friend class AcDbObject;
    friend class AcDbUndo;
    friend class AcDbUncountedChange;
    friend class AcDbBlockTableRecord;
    friend class AcDbSymbolTable;
    friend class AcDbNewBlocks;
    friend class AcDbXrefs;
    friend class ClassObserver;
    friend class CarrierKeeper;

    static constexpr std::uint32_t kChunk = 4096;
    struct Table {
        AcDbStub *head = nullptr;
        std::vector<std::uint32_t> records;
        mutable std::unordered_map<QString, std::uint32_t> byName; ///< Folded name to index; built on use.
        mutable bool named = false;
    };
    struct HeaderValue {
        ResbufList groups;
        bool present = true;  ///< False: an undone addition.
        bool changed = false; ///< Differs from the source.
    };

    AcDbStub *newStub();
    std::uint64_t takeHandle();
    Acad::ErrorStatus readCarried(AcDbObject &object) const;
    std::unique_ptr<AcDbObject> materialise(AcDbStub &stub, ResbufList groups) const;
    AcDbObject *resident(AcDbStub &stub);
    void releaseIdle(AcDbStub &stub);
    void replaceObject(AcDbStub &stub, std::unique_ptr<AcDbObject> object);
    void countChange();
    void noteChange(AcDbStub &stub);
    void noteRecordName(const AcDbStub &stub);
    QString recordName(const AcDbStub &stub) const;
    void finishWriting(AcDbStub &stub);
    void setErased(AcDbStub &stub, bool erased);
    void notifyWhileOpen(AcDbStub &stub,
                         const std::function<void(AcDbDatabaseReactor &, AcDbObject &)> &event);
    void indexHandle(AcDbStub *stub);
    void registerRecord(SymbolTable table, AcDbStub *stub);
    bool onLockedLayer(const AcDbObject &object) const;
    bool isProtectedProxy(const AcDbObject &object) const;
    void classRemoved(const AcRxClass *doomed);
    Table &table(SymbolTable kind) const { return m_tables[std::size_t(kind)]; }

    AcDbDrawingKinds m_kinds;
    std::unique_ptr<DrawingSource> m_source;
    std::vector<std::unique_ptr<AcDbStub[]>> m_chunks;
    std::uint32_t m_stubCount = 0;
    std::vector<std::uint32_t> m_byHandle; ///< Stub indexes in ascending order of handle.
    std::uint64_t m_nextHandle = 1;        ///< Where the search for a free one begins.
    mutable std::array<Table, kSymbolTableCount> m_tables;
    std::unordered_map<std::uint32_t, BlockContents> m_blocks; ///< By index of the block record's stub.
    AcDbObjectId m_namedObjects;
    QString m_folder;
    QString m_file;
    AcDbObjectId m_currentSpace;
    std::vector<DrawingClass> m_classes;
    std::vector<QByteArray> m_headerNames;
    std::unordered_map<QByteArray, HeaderValue> m_header;
    std::vector<std::uint32_t> m_changed;
    std::uint64_t m_changeCount = 0;
    std::uint64_t m_editState = 0;
    std::uint64_t m_lastEditState = 0; ///< The highest number given so far.
    std::unique_ptr<AcDbUndo> m_undo;
    base::Listeners<AcDbDatabaseReactor> m_reactors;
    base::Attachments m_attachments;
    /// Objects made for an earlier save, by the index of the custom object's stub; erased in between.
    struct Carrier {
        AcDbObjectId dictionary;
        AcDbObjectId record;
    };
    std::unordered_map<std::uint32_t, Carrier> m_carriers;
    QStringList m_repairs;
    mutable std::unique_ptr<AcDbXrefs> m_xrefs; ///< Made when first asked for.
};

/// Numbers a DXF object name that the program itself knows, for the life of the process; the same name gives
/// the same number everywhere.
AcDbKind acdbKind(const QByteArray &dxfName);
/// The number of a name that has one by now, else 0.
AcDbKind acdbKnownKind(const QByteArray &dxfName);
const QByteArray &acdbKindName(AcDbKind kind);
/// The registered class for a kind; AcDbEntity or AcDbObject for kinds without one.
AcRxClass *acdbKindClass(AcDbKind kind, bool isEntity);
/// Registers the host's own object classes; harmless when repeated.
void acdbRegisterClasses();
