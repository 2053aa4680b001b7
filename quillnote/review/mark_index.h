// What the review palette knows of the marks of the drawing that it shows: number, reviewer, words and status
// of each, read once and kept in step with the drawing, so that filters and searches open no mark.
#pragma once

#include "host/acdb/dbdatabase.h"
#include "host/acdb/dbreactor.h"

#include <QString>

#include <functional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

class QuillnoteObj3;

struct MarkSummary {
    AcDbObjectId id;
    std::uint16_t markNumber = 0;
    std::uint16_t subNumber = 0;
    std::int16_t feedbackType = 0;
    QString reviewer; ///< Without surrounding blanks.
    QString opinion;
    QString feedback;
};

MarkSummary summaryOf(const QuillnoteObj3 &mark);

class MarkIndex : private AcDbDatabaseReactor
{
public:
    /// `changed` is called when a mark comes, goes or changes, from inside the notification.
    explicit MarkIndex(std::function<void()> changed) : m_changed(std::move(changed)) {}
    ~MarkIndex() override { watch(nullptr); }
    MarkIndex(const MarkIndex &) = delete;
    MarkIndex &operator=(const MarkIndex &) = delete;

    /// The drawing; null for none.
    void watch(AcDbDatabase *database);
    AcDbDatabase *database() const { return m_database; }
    /// Something came, went or changed since marks() was last asked for.
    bool isStale() const { return m_listIsOld || !m_changedMarks.empty(); }
    /// All marks that can be read, in drawing order. Not to be asked for inside a notification.
    const std::vector<MarkSummary> &marks();

private:
    void objectAppended(const AcDbDatabase *, const AcDbObject *object) override { noteList(object); }
    void objectUnAppended(const AcDbDatabase *, const AcDbObject *object) override { noteList(object); }
    void objectReAppended(const AcDbDatabase *, const AcDbObject *object) override { noteList(object); }
    void objectErased(const AcDbDatabase *, const AcDbObject *object, bool) override { noteList(object); }
    void objectModified(const AcDbDatabase *, const AcDbObject *object) override;
    void goodbye(const AcDbDatabase *) override;

    class Reader;
    void noteList(const AcDbObject *object);
    void readList();
    void readChanged();

    std::function<void()> m_changed;
    AcDbDatabase *m_database = nullptr;
    std::vector<MarkSummary> m_marks;
    std::unordered_map<AcDbObjectId, std::size_t> m_places; ///< In m_marks.
    std::unordered_set<AcDbObjectId> m_changedMarks;
    bool m_listIsOld = false;
};
