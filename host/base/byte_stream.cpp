#include "host/base/byte_stream.h"

#include "host/base/assert.h"

namespace base
{

QByteArray ByteReader::byteArray(std::size_t count)
{
    const auto taken = bytes(count);
    return QByteArray(reinterpret_cast<const char *>(taken.data()), static_cast<qsizetype>(taken.size()));
}

QString ByteReader::utf16(std::size_t units)
{
    if (units > left() / sizeof(char16_t)) { // Also keeps the byte count below from overflowing.
        m_failed = true;
        return {};
    }
    const auto taken = bytes(units * sizeof(char16_t));
    QString text(static_cast<qsizetype>(taken.size() / sizeof(char16_t)), Qt::Uninitialized);
    if (!taken.empty())
        std::memcpy(text.data(), taken.data(), taken.size());
    return text;
}

void ByteReader::seek(std::size_t offset)
{
    if (m_failed || offset > m_bytes.size()) {
        m_failed = true;
        return;
    }
    m_offset = offset;
}

void ByteWriter::utf16(QStringView text)
{
    m_bytes.append(reinterpret_cast<const char *>(text.utf16()), text.size() * qsizetype(sizeof(char16_t)));
}

void ByteWriter::overwrite(std::size_t offset, QByteArrayView bytes)
{
    const auto count = static_cast<std::size_t>(bytes.size());
    QUILL_ASSERT(offset <= size() && count <= size() - offset);
    std::memcpy(m_bytes.data() + offset, bytes.data(), count);
}

} // namespace base
