#include "host/formats/dwg/dwgsection.h"

#include "host/base/host_text.h"
#include "host/formats/dwg/dwgchecksums.h"

#include <algorithm>

namespace dwg
{

static constexpr std::size_t kSentinel = 16;
static constexpr std::size_t kChecksum = 2;

/// Files may be larger than a number of 32 bits: the other half.
static std::size_t sizeBytes(const Container &container)
{
    const bool isWide =
        container.version == DrawingVersion::r2018 ||
        ((container.version == DrawingVersion::r2010 || container.version == DrawingVersion::r2013) &&
         container.maintenance > 3);
    return isWide ? 8 : 4;
}

std::string_view framedSection(Container &container, const QByteArray &name, std::string_view sentinel)
{
    const std::string_view section = container.section(name);
    const QString called = QString::fromLatin1(name);
    if (section.substr(0, std::min(kSentinel, section.size())) != sentinel)
        container.warn(Host::tr("the section %1 does not begin as it should").arg(called));
    const std::size_t size = numberAt<std::uint32_t>(section, kSentinel);
    const std::size_t head = kSentinel + sizeBytes(container);
    std::string_view data = partOf(section, head, size);
    if (data.empty()) {
        container.warn(Host::tr("the section %1 is cut off").arg(called));
        return section.size() > head ? section.substr(head) : std::string_view();
    }
    const std::string_view summed = section.substr(kSentinel, head - kSentinel + size);
    if (crc16(summed) != numberAt<std::uint16_t>(section, head + size))
        container.warn(Host::tr("the checksum of the section %1 is wrong").arg(called));
    return data;
}

SectionStreams sectionStreams(const FileFacts &facts, std::string_view section)
{
    SectionStreams streams;
    streams.data = Bits(section);
    streams.dataEnd = section.size() * 8;
    if (!facts.hasTextStream())
        return streams;
    const std::size_t end = streams.data.rawLong();
    streams.dataEnd = end < 1 ? 0 : end - 1;
    streams.handles = Bits(section);
    streams.handles.seek(end);
    streams.texts = Bits(section);
    if (end < 1 || streams.handles.failed()) {
        streams.data.fail();
        return streams;
    }
    Bits at(section);
    at.seek(end - 1);
    if (!at.bit() || end < 17)
        return streams;
    std::size_t textsEnd = end - 17;
    at.seek(textsEnd);
    std::size_t length = at.rawShort();
    if (length & 0x8000 && textsEnd >= 16) {
        textsEnd -= 16;
        at.seek(textsEnd);
        length = (length & 0x7FFF) | std::size_t(at.rawShort()) << 15;
    }
    if (length <= textsEnd) {
        streams.texts.seek(textsEnd - length);
        streams.textsEnd = textsEnd;
        streams.dataEnd = textsEnd - length;
    }
    return streams;
}

QString SectionStreams::text(const FileFacts &facts)
{
    if (facts.hasTextStream()) {
        const std::size_t length = std::uint16_t(texts.bitShort());
        if (texts.position() + length * 16 > textsEnd) {
            texts.fail();
            return {};
        }
        QString text;
        for (std::size_t i = 0; i < length; ++i)
            text.append(QChar(texts.rawShort()));
        return text;
    }
    QByteArray bytes = data.bytes(std::uint16_t(data.bitShort()));
    while (bytes.endsWith('\0'))
        bytes.chop(1);
    return decodeText({bytes.constData(), std::size_t(bytes.size())}, facts.codec);
}

QByteArray storedText(const FileFacts &facts, const QString &shown)
{
    // What would be read as an escape begins with one.
    QString text = shown;
    text.replace(QStringLiteral("\\U+"), QStringLiteral("\\U+005CU+"));
    text.replace(QStringLiteral("\\M+"), QStringLiteral("\\U+005CM+"));
    if (facts.hasTextStream())
        return {reinterpret_cast<const char *>(text.utf16()), text.size() * 2};
    return text.isEmpty() ? QByteArray() : facts.codec.encode(text, base::Substitute::unicodeEscape) + '\0';
}

void appendTexts(const BitWriter &texts, BitWriter &out)
{
    constexpr std::size_t kShort = 0x7FFF;
    if (texts.size() != 0) {
        out.append(texts);
        if (texts.size() > kShort)
            out.rawShort(std::uint16_t(texts.size() >> 15));
        out.rawShort(std::uint16_t(texts.size() > kShort ? (texts.size() & kShort) | 0x8000 : texts.size()));
    }
    out.bit(texts.size() != 0);
}

SectionEditor::SectionEditor(const FileFacts &facts, const Container &container, std::string_view section)
    : m_facts(facts), m_section(section), m_head(sizeBytes(container))
{
    const std::size_t size = numberAt<std::uint32_t>(section, kSentinel);
    m_content = partOf(section, kSentinel + m_head, size);
    m_behind = partOf(section, kSentinel + m_head + size + kChecksum,
                      section.size() - std::min(section.size(), kSentinel + m_head + size + kChecksum));
    m_good = !m_content.empty() && !m_behind.empty();
    in = sectionStreams(facts, m_content);
    skip();
}

static void copyBits(std::string_view from, std::size_t begin, std::size_t end, BitWriter &out)
{
    Bits at(from);
    at.seek(begin);
    if (end > begin)
        out.bits(at.bits(end - begin), end - begin);
}

void SectionEditor::copy()
{
    if (!good())
        return;
    copyBits(m_content, m_dataAt, in.data.position(), data);
    if (m_facts.hasTextStream()) {
        copyBits(m_content, m_textsAt, in.texts.position(), m_texts);
        copyBits(m_content, m_handlesAt, in.handles.position(), m_handles);
    }
    skip();
}

void SectionEditor::skip()
{
    m_dataAt = in.data.position();
    m_textsAt = in.texts.position();
    m_handlesAt = in.handles.position();
}

void SectionEditor::putText(const QString &text)
{
    const QByteArray bytes = storedText(m_facts, text);
    BitWriter &out = m_facts.hasTextStream() ? m_texts : data;
    out.bitShort(int(m_facts.hasTextStream() ? bytes.size() / 2 : bytes.size()));
    out.bytes(bytes);
}

void SectionEditor::putHandle(int code, std::uint64_t handle)
{
    (m_facts.hasTextStream() ? m_handles : data).handle(code, handle);
}

void SectionEditor::replaceHandle(std::uint64_t handle)
{
    Bits old(m_content);
    old.seek(m_facts.hasTextStream() ? m_handlesAt : m_dataAt);
    const int code = old.rawChar() >> 4;
    skip();
    putHandle(code, handle);
}

QByteArray SectionEditor::finish()
{
    // What is left of data, texts and handles; less than a byte at the end only fills that up, and does so
    // again where the rest begins at the same bit.
    BitWriter content;
    constexpr std::size_t kBits = 8;
    if (!m_facts.hasTextStream()) {
        const std::size_t left = m_content.size() * kBits - in.data.position();
        m_filling = left % kBits;
        in.data.skip(left - m_filling);
        copy();
        content = data;
    } else {
        in.data.seek(std::max(in.dataEnd, in.data.position()));
        in.texts.seek(std::max(in.textsEnd, in.texts.position()));
        const std::size_t left = m_content.size() * kBits - in.handles.position();
        m_filling = left % kBits;
        in.handles.skip(left - m_filling);
        copy();
        BitWriter body = data;
        appendTexts(m_texts, body);
        content.rawLong(std::uint32_t(body.size() + 32));
        content.append(body);
        content.append(m_handles);
    }
    const std::size_t filled = m_content.size() * kBits - m_filling;
    if (content.size() % kBits == filled % kBits)
        copyBits(m_content, filled, m_content.size() * kBits, content);
    content.pad(false);
    BitWriter framed;
    framed.bytes(QByteArray(m_section.data(), kSentinel));
    framed.rawLong(std::uint32_t(content.written().size()));
    framed.bytes(QByteArray(qsizetype(m_head - 4), '\0'));
    framed.append(content);
    const QByteArray summed = framed.written().mid(kSentinel);
    framed.rawShort(crc16({summed.constData(), std::size_t(summed.size())}));
    return framed.written() + QByteArray(m_behind.data(), qsizetype(m_behind.size()));
}

} // namespace dwg
