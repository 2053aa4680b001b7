#include "host/formats/dxf/dxfrepair.h"

#include "host/base/host_text.h"

#include <algorithm>

namespace dxf
{

qint64 RepairLog::place(std::uint64_t offset)
{
    if (m_source.form() == DrawingForm::dxfBinary)
        return qint64(offset);
    if (m_source.isKept(offset))
        offset = m_source.kept().placeInFile(offset - m_source.keptBegin());
    if (offset < m_countedTo) {
        m_countedTo = 0;
        m_line = 1;
    }
    const std::string_view bytes = m_source.bytes();
    m_line += std::count(bytes.data() + m_countedTo, bytes.data() + offset, m_source.lineEnd());
    m_countedTo = offset;
    return m_line;
}

void RepairLog::add(std::uint64_t offset, const QString &what)
{
    if (m_sentences.size() == kMost) {
        ++m_more;
        return;
    }
    const bool isBinary = m_source.form() == DrawingForm::dxfBinary;
    m_sentences.append(
        (isBinary ? Host::tr("Byte %1: %2.") : Host::tr("Line %1: %2.")).arg(place(offset)).arg(what));
}

QStringList RepairLog::sentences() const
{
    QStringList all = m_sentences;
    if (m_more > 0)
        all.append(Host::tr("%1 more repairs are not listed.").arg(m_more));
    return all;
}

} // namespace dxf
