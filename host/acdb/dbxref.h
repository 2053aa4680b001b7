// External references: the other drawings that blocks of a drawing show.
//
// Such a block is a BLOCK with a flag and the path of a file; its entities stand in that file and nowhere
// else. The other drawing is read when somebody first looks for it, whole and once for all blocks that name
// it, and is never changed. It lives as long as the drawing that shows it; so do the drawings that it shows
// in turn. What walks through blocks goes from the block record to acdbShownBlock() and on from there.
#pragma once

#include "host/acdb/dbid.h"
#include "host/acdb/dbreactor.h"
#include "host/acge/gepoint.h"
#include "host/base/file_stamp.h"
#include "host/base/result.h"

#include <QString>

#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

enum class AcDbXrefState {
    loaded,
    unloaded, ///< The user wants it so.
    notFound,
    refused, ///< Its file cannot be read, or there are too many.
    circular ///< It leads back to a drawing that shows it.
};

/// An external reference of one drawing.
struct AcDbXref {
    AcDbObjectId block;     ///< Its block record, in the drawing that names it.
    QString name;           ///< Of that record.
    QString path;           ///< As the drawing writes it.
    bool isOverlay = false; ///< Not shown where the drawing that names it is a reference itself.
    AcDbXrefState state = AcDbXrefState::notFound;
    QString reason;                   ///< Why it was refused.
    QString file;                     ///< What was found, a whole path.
    AcDbDatabase *database = nullptr; ///< The other drawing while it is loaded.
};

class AcDbXrefs : private AcDbDatabaseReactor
{
public:
    /// Flags in group 70 of a BLOCK.
    static constexpr std::int64_t kAttached = 4;
    static constexpr std::int64_t kOverlay = 8;
    /// In whose extended data a block record says that it is unloaded.
    static const QString kApplication;

    /// Of a drawing that nobody refers to.
    explicit AcDbXrefs(AcDbDatabase &database);
    ~AcDbXrefs() override;
    AcDbXrefs(const AcDbXrefs &) = delete;
    AcDbXrefs &operator=(const AcDbXrefs &) = delete;

    /// In table order. Reads what has to be read.
    const std::vector<AcDbXref> &all();
    const AcDbXref *find(AcDbObjectId block);
    /// Those of the drawings that it shows too, each once, behind all().
    std::vector<AcDbXref> nested();
    /// False when the drawing has none that shows anything: then nobody needs to ask.
    bool any() { return !all().empty(); }
    /// Reads the file again when it is not the one that was read, or `always`.
    void reload(AcDbObjectId block, bool always = true);
    /// Those whose file is not the one that was read, nested ones too.
    std::vector<AcDbXref> changedOnDisk();

    /// The drawing that shows this one, at the end of all nesting; itself when it is none's reference.
    AcDbDatabase &host() const { return *m_host; }
    bool isReference() const { return m_host != &m_database; }
    /// What a layer or linetype of this drawing is called in host(): "name|layer". The names that every
    /// drawing has, and those that came from further references, are the same there.
    QString nameInHost(const QString &name) const;

private:
    struct Loaded;
    struct Pool;

    AcDbXrefs(AcDbDatabase &database, AcDbXrefs &shower, const QString &name, const QString &file);
    void objectAppended(const AcDbDatabase *, const AcDbObject *object) override { noteChange(*object); }
    void objectUnAppended(const AcDbDatabase *, const AcDbObject *object) override { noteChange(*object); }
    void objectReAppended(const AcDbDatabase *, const AcDbObject *object) override { noteChange(*object); }
    void objectModified(const AcDbDatabase *, const AcDbObject *object) override { noteChange(*object); }
    void objectErased(const AcDbDatabase *, const AcDbObject *object, bool) override { noteChange(*object); }
    void noteChange(const AcDbObject &object);
    void changed();
    void refresh();
    void load(AcDbXref &xref);
    bool leadsTo(const AcDbDatabase &wanted) const;

    AcDbDatabase &m_database;
    AcDbDatabase *m_host;
    QString m_name; ///< Under which the host shows it.
    int m_depth = 0;
    std::shared_ptr<Pool> m_pool; ///< The drawings that a host shows, shared by all of them.
    bool m_isFresh = false;
    bool m_isReading = false;
    std::vector<AcDbXref> m_all;
    std::unordered_map<AcDbObjectId, std::size_t> m_byBlock;
};

/// The block whose entities references to `block` show: model space of the other drawing for an external
/// reference; null when that is not loaded; else the block itself.
AcDbObjectId acdbShownBlock(AcDbObjectId block);
/// The point of the shown block that comes to lie at the insertion point.
AcGePoint3d acdbBasePoint(AcDbObjectId block);
/// The record of a layer that an entity of `database` names, as the host shows it: the host's own record
/// "name|layer", else that of the other drawing.
AcDbObjectId acdbShownLayer(const AcDbDatabase &database, const QString &layer);

/// Why it shows nothing, for people; empty for one that is loaded.
QString acdbXrefTrouble(const AcDbXref &xref);

/// How drawings are read; given by the folder that knows the file formats.
using AcDbDrawingReader = base::Result<std::unique_ptr<AcDbDatabase>, QString> (*)(const QString &path);
void acdbSetDrawingReader(AcDbDrawingReader reader);
/// The file that a drawing in `folder` means by a path: beside the drawing first, then where the path says.
/// Ending and letter case may differ, as drawings come from other systems. Empty when there is none.
QString acdbFindDrawing(const QString &path, const QString &folder, const QString &exceptFor = {});
