#include "host/formats/dwg/dwgobject.h"

#include "host/formats/dwg/dwgchecksums.h"
#include "host/formats/dwg/dwgcontainer.h"

#include <algorithm>
#include <array>

namespace dwg
{

static constexpr std::array<int, 24> kLineweights{0,  5,  9,  13, 15, 18,  20,  25,  30,  35,  40,  50,
                                                  53, 60, 70, 80, 90, 100, 106, 120, 140, 158, 200, 211};

int lineweightOf(int index)
{
    if (index >= 0 && index < int(kLineweights.size()))
        return kLineweights[std::size_t(index)];
    return index == 29 ? -1 : index == 30 ? -2 : -3;
}

int lineweightIndex(int weight)
{
    if (weight == -1 || weight == -2)
        return 28 - weight;
    const auto known = std::ranges::find(kLineweights, weight);
    return known == kLineweights.end() ? 31 : int(known - kLineweights.begin());
}

ObjectReader::ObjectReader(const FileFacts &facts, std::string_view record) : m_facts(facts), m_record(record)
{
    Bits head(record);
    const std::size_t bytes = head.modularShort();
    const std::size_t handleBits = facts.since(DrawingVersion::r2010) ? std::size_t(head.modularChar()) : 0;
    if (head.failed() || bytes == 0 || bytes > head.bitsLeft() / 8)
        return;
    const std::size_t begin = head.position() / 8;
    m_body = record.substr(begin, bytes);
    m_size = begin + bytes + 2;
    m_handlesEnd = bytes * 8;
    data = Bits(m_body);
    m_type = data.objectType(facts.version);
    if (facts.since(DrawingVersion::r2010)) {
        if (handleBits > m_handlesEnd)
            return;
        findStreams(m_handlesEnd - handleBits);
    } else if (facts.since(DrawingVersion::r2000)) {
        findStreams(data.rawLong());
    }
    m_handle = data.handle(0).handle;
    m_good = !data.failed();
}

bool ObjectReader::checksumFits() const
{
    if (m_size > m_record.size() || m_size < 2)
        return false;
    return crc16(m_record.substr(0, m_size - 2)) == numberAt<std::uint16_t>(m_record, m_size - 2);
}

/// Texts stand right in front of the handles: their length, and a bit that says whether there are any.
void ObjectReader::findStreams(std::size_t handlesBegin)
{
    handles = Bits(m_body);
    handles.seek(handlesBegin);
    m_handlesBegin = handlesBegin;
    m_dataEnd = m_textsBegin = m_textsEnd = std::min(handlesBegin, m_handlesEnd);
    if (!m_facts.hasTextStream() || handlesBegin < 1 || handlesBegin > m_handlesEnd)
        return;
    constexpr std::size_t kLengthBits = 16;
    m_dataEnd = m_textsBegin = m_textsEnd = handlesBegin - 1;
    Bits at(m_body);
    at.seek(handlesBegin - 1);
    if (!at.bit())
        return;
    if (m_textsEnd < kLengthBits) {
        at.fail();
        return;
    }
    m_textsEnd -= kLengthBits;
    at.seek(m_textsEnd);
    std::size_t length = at.rawShort();
    if (length & 0x8000 && m_textsEnd >= kLengthBits) {
        m_textsEnd -= kLengthBits;
        at.seek(m_textsEnd);
        length = (length & 0x7FFF) | std::size_t(at.rawShort()) << 15;
    }
    if (length > m_textsEnd)
        return;
    m_dataEnd = m_textsBegin = m_textsEnd - length;
    texts = Bits(m_body);
    texts.seek(m_textsBegin);
}

Bits ObjectReader::dataFrom(std::size_t bit) const
{
    Bits from(m_body);
    from.seek(bit);
    return from;
}

Common ObjectReader::readCommon(bool isEntity)
{
    Common common;
    common.extendedBegin = data.position();
    while (const int size = std::uint16_t(data.bitShort())) {
        data.handle(0);
        data.skip(std::size_t(size) * 8);
        if (data.failed())
            return common;
    }
    if (isEntity && data.bit()) {
        const std::uint64_t size = m_facts.since(DrawingVersion::r2010) ? data.bitLongLong() : data.rawLong();
        common.graphicsBegin = data.position();
        common.graphicsSize = std::size_t(std::min<std::uint64_t>(size, SIZE_MAX / 8));
        data.skip(common.graphicsSize * 8);
    }
    if (!m_facts.since(DrawingVersion::r2000))
        findStreams(data.rawLong());
    if (isEntity)
        common.entityMode = data.twoBits();
    const std::int32_t reactors = data.bitLong();
    const bool hasDictionary = !m_facts.since(DrawingVersion::r2004) || !data.bit();
    if (m_facts.since(DrawingVersion::r2013))
        common.hasBinaryData = data.bit();
    if (isEntity)
        readEntityFlags(common);
    // Every handle takes a byte at least.
    if (reactors < 0 || std::size_t(reactors) > handles.bitsLeft() / 8) {
        handles.fail();
        return common;
    }
    readCommonHandles(common, isEntity, reactors, hasDictionary);
    return common;
}

void ObjectReader::readEntityFlags(Common &common)
{
    if (!m_facts.since(DrawingVersion::r2000))
        common.linetypeFlags = data.bit() ? 0 : 3;
    if (!m_facts.since(DrawingVersion::r2004))
        common.noLinks = data.bit();
    readEntityColor(common);
    common.linetypeScale = data.bitDouble();
    if (m_facts.since(DrawingVersion::r2000))
        common.linetypeFlags = data.twoBits();
    if (m_facts.since(DrawingVersion::r2007)) {
        common.materialFlags = data.twoBits();
        common.shadowFlags = data.rawChar();
    }
    if (m_facts.since(DrawingVersion::r2000))
        common.plotStyleFlags = data.twoBits();
    if (m_facts.since(DrawingVersion::r2010)) {
        for (std::uint64_t &style : common.visualStyles)
            style = data.bit() ? 1 : 0; // Read with the other handles.
    }
    common.visibility = data.bitShort();
    if (m_facts.since(DrawingVersion::r2000))
        common.lineweight = data.rawChar();
}

/// ENC: flags above the index say what else is there.
void ObjectReader::readEntityColor(Common &common)
{
    const unsigned value = std::uint16_t(data.bitShort());
    m_hasBookColor = false;
    common.colorWord = value;
    if (!m_facts.since(DrawingVersion::r2004)) {
        common.color = std::int16_t(value);
        return;
    }
    common.color = int(value & 0x1FF);
    if (value & 0x8000)
        common.trueColor = std::uint32_t(data.bitLong());
    m_hasBookColor = value & 0x4000;
    if (value & 0x2000)
        common.transparency = std::uint32_t(data.bitLong());
}

void ObjectReader::readCommonHandles(Common &common, bool isEntity, std::int32_t reactors, bool hasDictionary)
{
    const auto next = [this] { return reference().handle; };
    if (!isEntity || common.entityMode == 0)
        common.owner = reference();
    common.reactors.reserve(std::size_t(reactors));
    for (std::int32_t i = 0; i < reactors; ++i)
        common.reactors.push_back(next());
    if (hasDictionary)
        common.dictionary = next();
    if (!isEntity)
        return;
    if (!m_facts.since(DrawingVersion::r2000)) {
        common.layer = next();
        if (common.linetypeFlags == 3)
            common.linetype = next();
    }
    if (!common.noLinks) {
        common.previous = next();
        common.next = next();
    }
    if (!m_facts.since(DrawingVersion::r2000))
        return;
    if (m_hasBookColor)
        common.bookColor = next();
    common.layer = next();
    if (common.linetypeFlags == 3)
        common.linetype = next();
    if (common.materialFlags == 3)
        common.material = next();
    if (common.plotStyleFlags == 3)
        common.plotStyle = next();
    for (std::uint64_t &style : common.visualStyles)
        style = style ? next() : 0;
}

/// Resolves "\U+00B0" and "\M+1..."; control characters stand in DWG as they are, and so do carets.
static QString withoutEscapes(QString text)
{
    if (!text.contains(u"\\U+") && !text.contains(u"\\M+"))
        return text;
    static const base::TextCodec kUtf8("UTF-8");
    const QByteArray bytes = text.replace(u'^', QStringLiteral("^ ")).toUtf8();
    return base::decodeDrawingText({bytes.constData(), std::size_t(bytes.size())}, kUtf8);
}

QString decodeText(std::string_view bytes, const base::TextCodec &codec)
{
    return withoutEscapes(codec.decode(bytes));
}

/// Strings end with a NUL in files up to AC1018; what the code page lacks stands in escapes.
QString ObjectReader::text()
{
    if (!m_facts.hasTextStream()) {
        const std::size_t length = std::uint16_t(data.bitShort());
        const QByteArray bytes = data.bytes(length);
        const auto shown = std::size_t(bytes.endsWith('\0') ? bytes.size() - 1 : bytes.size());
        QString text = decodeText({bytes.constData(), shown}, m_facts.codec);
        if (kept)
            kept->texts.add(text, bytes);
        return text;
    }
    if (m_textsBegin == m_textsEnd)
        return {};
    const std::size_t length = std::uint16_t(texts.bitShort());
    if (length > texts.bitsLeft() / 16 || texts.position() + length * 16 > m_textsEnd) {
        texts.fail();
        return {};
    }
    QString text(qsizetype(length), Qt::Uninitialized);
    for (QChar &unit : text)
        unit = QChar(texts.rawShort());
    const QByteArray stored(reinterpret_cast<const char *>(text.constData()), kept ? text.size() * 2 : 0);
    while (text.endsWith(QChar(0)))
        text.chop(1);
    text = withoutEscapes(std::move(text));
    if (kept)
        kept->texts.add(text, stored);
    return text;
}

Color ObjectReader::color()
{
    Color color;
    color.index = data.bitShort();
    if (!m_facts.since(DrawingVersion::r2004))
        return color;
    const int stored = color.index;
    const std::uint32_t value = std::uint32_t(data.bitLong());
    const unsigned flags = data.rawChar();
    if (flags & 1)
        color.name = text();
    if (flags & 2)
        color.book = text();
    switch (value >> 24) {
    case 0xC0:
        color.index = 256;
        break;
    case 0xC1:
        color.index = 0;
        break;
    case 0xC2:
        color.rgb = value & 0xFFFFFF;
        break;
    case 0xC3:
        color.index = int(value & 0x1FF);
        break;
    default:
        break;
    }
    if (kept)
        kept->colors.add(color, {stored, std::int32_t(value), flags});
    return color;
}

} // namespace dwg
