// RepairLog: what opening had to mend, with its place in the file, one sentence each.
#pragma once

#include "host/formats/dxf/dxfsource.h"

#include <QStringList>

namespace dxf
{

class RepairLog
{
public:
    explicit RepairLog(const DxfSource &source) : m_source(source) {}

    /// `what` goes on after "Line 12: " and ends without a full stop.
    void add(std::uint64_t offset, const QString &what);
    /// Line of an offset, from 1; the offset itself in binary files.
    qint64 place(std::uint64_t offset);
    /// The sentences; when there were very many, the last one counts the rest.
    QStringList sentences() const;

private:
    static constexpr qsizetype kMost = 1000;

    const DxfSource &m_source;
    std::uint64_t m_countedTo = 0; ///< Lines before here are in m_line: places mostly come in file order.
    qint64 m_line = 1;
    QStringList m_sentences;
    qint64 m_more = 0;
};

} // namespace dxf
