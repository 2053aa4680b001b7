// Undo: before-images in groups. One command is one group; undoing a group puts its images back and
// keeps what was there, so the same group serves for redo.
#pragma once

#include "host/acdb/dbdatabase.h"

#include <functional>
#include <optional>
#include <vector>

class AcDbUndo
{
public:
    explicit AcDbUndo(AcDbDatabase &database) : m_database(database) {}

    /// Groups nest: only the outermost counts. A group without changes leaves no step.
    void beginGroup(const QString &label);
    void endGroup();
    bool isOpen() const { return m_depth > 0; }
    /// Does `work` inside the open group. When it returns false, what it changed is as it was before, and no
    /// object may be open then.
    bool attempt(const std::function<bool()> &work);

    /// Undoes the last group; false when there is none or a group is open.
    bool undo();
    bool redo();
    /// Labels of the steps that undo() and redo() would take, next one first.
    QStringList undoLabels() const;
    QStringList redoLabels() const;
    /// Number of steps that can be undone; a place to come back to.
    std::size_t position() const { return m_done.size(); }
    void clear();

    /// While recording is off, changes make no steps (opening files, carriers made for saving).
    void setRecording(bool on) { m_recording = on; }
    bool isRecording() const { return m_recording; }

private:
    friend class AcDbDatabase;
    friend class AcDbObject;
    friend class CarrierKeeper;

    /// What an object was: its source bytes, or its groups and filed fields.
    struct Image {
        bool erased = false;
        bool fromSource = false;
        bool isProxy = false;
        std::uint32_t owner = 0;
        ResbufList groups;
        QByteArray filed;
        std::vector<QByteArray> longBytes; ///< Pictures and the like, in the order in which they are filed.
    };
    struct ObjectChange {
        AcDbStub *stub;
        Image image;
    };
    struct HeaderChange {
        QByteArray name;
        AcDbDatabase::HeaderValue value;
    };
    struct Group {
        QString label;
        std::vector<ObjectChange> objects;
        std::vector<HeaderChange> header;
        std::uint64_t state = 0; ///< AcDbDatabase::editState() on the other side of the step.
        bool isEmpty() const { return objects.empty() && header.empty(); }
        bool has(const QByteArray &name) const; ///< Of a header variable.
    };

    /// Called before the first change of an object in a group.
    void recordObject(AcDbStub &stub);
    void recordAppended(AcDbStub &stub);
    void recordHeader(const QByteArray &name);
    Group newGroup(const QString &label) const;
    Group *openGroup();
    void forgetRecorded();
    void closeCurrent();
    void append(Group later);
    Image capture(const AcDbStub &stub) const;
    void restore(AcDbStub &stub, Image image);
    void restoreContent(AcDbStub &stub, const Image &image);
    void swap(Group &group);
    bool move(std::vector<Group> &from, std::vector<Group> &to);
    static QStringList labels(const std::vector<Group> &groups);

    AcDbDatabase &m_database;
    std::vector<Group> m_done;
    std::vector<Group> m_undone;
    std::optional<Group> m_current;
    int m_depth = 0;
    bool m_recording = true;
};

/// What is changed while it lives goes into the file with the next save, but makes no step and counts as no
/// change of the drawing: where a user was, not what he did.
class AcDbUncountedChange
{
public:
    explicit AcDbUncountedChange(AcDbDatabase &database);
    ~AcDbUncountedChange();
    AcDbUncountedChange(const AcDbUncountedChange &) = delete;
    AcDbUncountedChange &operator=(const AcDbUncountedChange &) = delete;

private:
    AcDbDatabase &m_database;
    std::uint64_t m_changeCount;
    bool m_wasRecording;
};

/// A group for the life of a scope.
class AcDbUndoGroup
{
public:
    AcDbUndoGroup(AcDbDatabase &database, const QString &label) : m_undo(database.undo())
    {
        m_undo.beginGroup(label);
    }
    ~AcDbUndoGroup() { m_undo.endGroup(); }
    AcDbUndoGroup(const AcDbUndoGroup &) = delete;
    AcDbUndoGroup &operator=(const AcDbUndoGroup &) = delete;

private:
    AcDbUndo &m_undo;
};
