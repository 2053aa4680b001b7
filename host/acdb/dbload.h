// AcDbLoader: how a file format fills an empty database. Used by formats only.
//
// The format calls the add functions in file order, then finish(). Only places are given, no contents:
// the database reads those through the source when somebody asks.
#pragma once

#include "host/acdb/dbdatabase.h"

class AcDbLoader
{
public:
    /// The database must be new. It takes the source.
    AcDbLoader(AcDbDatabase &database, std::unique_ptr<DrawingSource> source);

    AcDbDatabase &database() { return m_database; }
    /// Room for about this many objects.
    void reserve(std::size_t objects);
    /// An object at a place of the source; handle 0 when the file gives none.
    AcDbStub *addObject(AcDbKind kind, std::uint64_t handle, std::uint64_t begin, std::uint32_t size,
                        std::uint16_t flags);
    /// An object that this file version has no place for (a block record of R12).
    AcDbStub *addSynthetic(AcDbKind kind, ResbufList groups, std::uint16_t flags);

    void setTableHead(SymbolTable table, AcDbStub *head);
    /// The stub becomes the table's next record and is owned by the table's head, if there is one.
    void addRecord(SymbolTable table, AcDbStub *record);
    /// Contents of the block record, made on first use; the reference is good until the next call.
    BlockContents &block(AcDbStub *blockRecord);
    /// The stub becomes the block's next entity and is owned by the block record.
    void addEntity(AcDbStub *blockRecord, AcDbStub *entity);
    void setOwner(AcDbStub *stub, const AcDbStub *owner) { stub->owner = owner ? owner->index : 0; }
    void setNamedObjects(AcDbStub *dictionary);
    void setOwnerHandle(AcDbStub *stub, std::uint64_t ownerHandle);

    void addHeaderVariable(const QByteArray &name, ResbufList groups);
    void addClass(DrawingClass added);
    void addRepair(const QString &sentence);

    /// Gives handles to objects that have none (in file order, from 1, skipping those in use), settles
    /// handles used twice (the first keeps it, the others are renumbered and listed as repairs), resolves
    /// owners, and finds the next free handle.
    void finish();

private:
    void giveMissingHandles();
    void addByHandle(std::vector<std::uint32_t> &given);
    void settleDuplicates();
    void resolveOwners();

    AcDbDatabase &m_database;
    std::vector<std::pair<std::uint32_t, std::uint64_t>> m_ownerHandles; ///< Stub index, owner's handle.
};
