// Symbol tables and their records: thin views over table groups.
#pragma once

#include "host/acdb/dbentity.h"

/// A record of any symbol table.
class AcDbSymbolTableRecord : public AcDbObject
{
public:
    static AcRxClass *desc();
    QString getName() const;
    /// Group 70.
    int flags() const;
    void setFlags(int flags);
};

/// Any symbol table: look-up and new records. The database keeps the order of the records.
class AcDbSymbolTable
{
public:
    AcDbSymbolTable(AcDbDatabase &database, SymbolTable kind) : m_database(database), m_kind(kind) {}
    bool has(const QString &name) const { return getAt(name).isValid(); }
    AcDbObjectId getAt(const QString &name) const { return m_database.tableRecord(m_kind, name); }
    /// Records that are not erased, in table order.
    std::vector<AcDbObjectId> records() const;
    /// A new record like the record `model` (an existing name, as "0" for layers) under another name;
    /// open for write. eDuplicateKey when the name exists, eKeyNotFound without the model.
    Acad::ErrorStatus addLike(const QString &model, const QString &name, AcDbObjectId &added);
    /// A new record of these groups, which are those of this drawing's version; open for write. eDuplicateKey
    /// when the name exists.
    Acad::ErrorStatus add(ResbufList groups, AcDbObjectId &added);
    /// A new application id record; the existing one when the name is there.
    static AcDbObjectId ensureApplicationId(AcDbDatabase &database, const QString &name);

private:
    AcDbDatabase &m_database;
    SymbolTable m_kind;
};

/// Makes blocks: anonymous ones "*U1", "*U2" ..., numbered behind those that the drawing has, and others.
/// Looks at the block table once: one of these for a whole run of new blocks.
class AcDbNewBlocks
{
public:
    explicit AcDbNewBlocks(AcDbDatabase &database);
    /// An empty block record, open for write; null when the drawing has no block table to speak of.
    AcDbObjectId addAnonymous(const AcGePoint3d &origin);
    /// The same under a name that no block has; null for one that is there.
    AcDbObjectId add(const QString &name, const AcGePoint3d &origin);

private:
    AcDbObjectId make(const QString &name, std::int64_t flags, const AcGePoint3d &origin);

    AcDbDatabase &m_database;
    ResbufList m_model;       ///< What this file version expects of a block record.
    std::uint64_t m_next = 1; ///< Files may hold any number; behind the largest of all comes none.
};

class AcDbLayerTableRecord : public AcDbSymbolTableRecord
{
public:
    static AcRxClass *desc();
    bool isFrozen() const { return flags() & 1; }
    void setIsFrozen(bool on);
    bool isFrozenInNewViewports() const { return flags() & 2; }
    void setIsFrozenInNewViewports(bool on);
    bool isLocked() const { return flags() & 4; }
    void setIsLocked(bool on);
    /// A layer that is off has its colour negated in the file.
    bool isOff() const;
    void setIsOff(bool on);
    int colorIndex() const;
    void setColorIndex(int index);
    QString linetype() const;
    void setLinetype(const QString &name);
    bool isPlottable() const;
    void setIsPlottable(bool on);
};

class AcDbBlockTableRecord : public AcDbSymbolTableRecord
{
public:
    static AcRxClass *desc();
    /// Model space or a paper-space layout.
    bool isLayout() const;
    bool isModelSpace() const;
    bool isPaperSpace() const { return isLayout() && !isModelSpace(); }
    AcDbObjectId layoutId() const;
    /// Insertion base point of a block definition.
    AcGePoint3d origin() const;
    /// Takes the entity (in no database before), makes it the block's last one, leaves it open for write.
    Acad::ErrorStatus appendAcDbEntity(AcDbObjectId &id, AcDbEntity *entity);
    /// Entities that are not erased, in drawing order.
    std::vector<AcDbObjectId> entities() const;
};

/// The block records of model space and the paper-space layouts, in table order.
std::vector<AcDbObjectId> acdbLayoutBlocks(const AcDbDatabase &database);
/// What they show of one kind, without opening any of it: layouts in table order, entities in drawing order.
std::vector<AcDbObjectId> acdbEntitiesOfKind(const AcDbDatabase &database, AcDbKind kind);
/// Name of the layout that a block record belongs to: "Model", "Layout1"; empty for other blocks.
QString acdbLayoutName(AcDbObjectId blockRecord);
/// Entities that `entity` owns: attributes of an insert, vertices of a polyline, and their end marker.
std::vector<AcDbObjectId> acdbSubEntities(AcDbObjectId entity);
/// Takes the groups between braces (extension dictionary, reactors) out of a list that is to be copied.
void acdbDropApplicationGroups(ResbufList &groups);
