// Packing files of AC1015: sections as they are, one behind the other.
#include "host/formats/dwg/dwgbitwriter.h"
#include "host/formats/dwg/dwgchecksums.h"
#include "host/formats/dwg/dwgpacker.h"

#include <optional>

namespace dwg
{
namespace
{

using namespace std::string_view_literals;

constexpr std::size_t kRecordCountAt = 0x15;
constexpr std::size_t kRecords = 0x19;
constexpr std::size_t kRecord = 9;
constexpr std::size_t kSentinel = 16;

/// Where a section stands in the file.
struct Record {
    std::uint8_t number = 0;
    std::uint32_t at = 0;
    std::uint32_t size = 0;
};

// The second header ------------------------------------------------------------------------------

constexpr std::string_view kSecondBegin =
    "\xD4\x7B\x21\xCE\x28\x93\x9F\xBF\x53\x24\x40\x09\x12\x3C\xAA\x01"sv;
constexpr std::string_view kSecondEnd = "\x2B\x84\xDE\x31\xD7\x6C\x60\x40\xAC\xDB\xBF\xF6\xED\xC3\x55\xFE"sv;

/// A copy of the places of sections, and handles that a damaged file is mended by; the first of them is the
/// hand seed.
struct SecondHeader {
    QByteArray version;        ///< Its text and two numbers, 13 bytes.
    std::uint16_t program = 0; ///< The version and maintenance number of the program that wrote the file.
    std::uint16_t codePage = 0;
    std::vector<Record> records; ///< In an order of their own.
    std::vector<std::pair<std::uint8_t, QByteArray>> handles;
    QByteArray rest; ///< Eight bytes that nothing is known of.
};

std::optional<SecondHeader> readSecondHeader(std::string_view file)
{
    const std::size_t begin = file.rfind(kSecondBegin);
    const std::size_t end = begin == std::string_view::npos ? begin : file.find(kSecondEnd, begin);
    if (end == std::string_view::npos)
        return {};
    const std::string_view framed = file.substr(begin + kSentinel, end - begin - kSentinel);
    if (framed.size() < 32)
        return {};
    Bits in(framed.substr(4));
    SecondHeader header;
    in.bitLong(); // Its own place.
    header.version = in.bytes(13);
    header.program = std::uint16_t(in.bitShort());
    header.codePage = in.rawShort();
    const int records = std::uint16_t(in.bitShort());
    for (int i = 0; i < records && !in.failed(); ++i) {
        Record record;
        record.number = in.rawChar();
        record.at = std::uint32_t(in.bitLong());
        record.size = std::uint32_t(in.bitLong());
        header.records.push_back(record);
    }
    const int handles = std::uint16_t(in.bitShort());
    for (int i = 0; i < handles && !in.failed(); ++i) {
        const std::size_t length = in.rawChar();
        const std::uint8_t number = in.rawChar();
        header.handles.emplace_back(number, in.bytes(length));
    }
    header.rest = QByteArray(framed.data() + framed.size() - 8, 8);
    if (in.failed() || records > 64 || handles > 64)
        return {};
    return header;
}

QByteArray writeSecondHeader(const SecondHeader &header, std::uint32_t at, std::uint64_t seed)
{
    BitWriter out;
    out.bitLong(std::int32_t(at));
    out.bytes(header.version);
    out.bitShort(header.program);
    out.rawShort(header.codePage);
    out.bitShort(int(header.records.size()));
    for (const Record &record : header.records) {
        out.rawChar(record.number);
        out.bitLong(std::int32_t(record.at));
        out.bitLong(std::int32_t(record.size));
    }
    out.bitShort(int(header.handles.size()));
    for (const auto &[number, stored] : header.handles) {
        QByteArray handle = stored;
        if (number == 0 && seed != 0) {
            handle.clear();
            for (std::uint64_t rest = seed; rest != 0; rest >>= 8)
                handle.prepend(char(rest & 0xFF));
        }
        out.rawChar(unsigned(handle.size()));
        out.rawChar(number);
        out.bytes(handle);
    }
    const QByteArray &data = out.written();
    QByteArray framed;
    appendNumber(framed, std::uint32_t(4 + data.size() + 2 + header.rest.size()));
    framed += data;
    appendNumber(framed, crc16(viewOf(framed)));
    framed += header.rest;
    return QByteArray(kSecondBegin.data(), kSentinel) + framed + QByteArray(kSecondEnd.data(), kSentinel);
}

// Files ------------------------------------------------------------------------------------------

class PlainFile
{
public:
    PlainFile(const FileContents &contents, PackedSections &sections)
        : m_contents(contents), m_original(contents.original.file), m_sections(sections)
    {
        const std::uint32_t count = numberAt<std::uint32_t>(m_original, kRecordCountAt);
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::size_t at = kRecords + i * kRecord;
            m_records.push_back({std::uint8_t(m_original[at]), numberAt<std::uint32_t>(m_original, at + 1),
                                 numberAt<std::uint32_t>(m_original, at + 5)});
        }
        m_old = m_records;
    }

    QByteArray pack()
    {
        const std::size_t headSize = kRecords + m_records.size() * kRecord + 2 + kSentinel;
        m_file = QByteArray(m_original.data(), qsizetype(headSize));
        append(5, m_sections.find("AcDb:AuxHeader"));
        appendPreview();
        append(0, m_sections.find("AcDb:Header"));
        append(1, m_sections.find("AcDb:Classes"));
        const auto objectsAt = std::uint32_t(m_file.size());
        const PlacedObjects placed = placeObjects(m_contents.objects, objectsAt);
        m_file += placed.bytes;
        append(2, viewOf(placed.map));
        QByteArray free(m_sections.find("AcDb:ObjFreeSpace").data(),
                        qsizetype(m_sections.find("AcDb:ObjFreeSpace").size()));
        constexpr qsizetype kObjectsAt = 16;
        if (free.size() >= kObjectsAt + 4)
            putNumber(free, kObjectsAt, objectsAt);
        append(3, viewOf(free));
        appendUnknown();
        appendSecondHeader();
        append(4, m_sections.find("AcDb:Template"));
        finishHeader();
        return std::move(m_file);
    }

private:
    /// The section of a number comes to stand here; one that the file did not have leaves it without.
    void append(std::uint8_t number, std::string_view bytes)
    {
        for (Record &record : m_records) {
            if (record.number != number)
                continue;
            if (bytes.empty()) {
                record.at = record.size = 0;
                return;
            }
            record.at = std::uint32_t(m_file.size());
            record.size = std::uint32_t(bytes.size());
            m_file.append(bytes.data(), qsizetype(bytes.size()));
            return;
        }
    }

    /// Sections of numbers that nobody knows.
    void appendUnknown()
    {
        for (std::size_t i = 0; i < m_old.size(); ++i) {
            if (m_old[i].number > 5)
                append(m_old[i].number, partOf(m_original, m_old[i].at, m_old[i].size));
        }
    }

    void appendPreview()
    {
        constexpr std::size_t kPlaceAt = 0x0D;
        const std::uint32_t from = numberAt<std::uint32_t>(m_original, kPlaceAt);
        const std::size_t size =
            2 * kSentinel + 4 + std::size_t(numberAt<std::uint32_t>(m_original, from + kSentinel));
        const std::string_view preview = from == 0 ? std::string_view() : partOf(m_original, from, size);
        const auto to = std::uint32_t(m_file.size());
        putNumber(m_file, kPlaceAt, preview.empty() ? 0u : to);
        m_file += movedPreview(preview, from, to);
    }

    /// Records that the original left empty stay so. Where the template will stand is known: behind it.
    void appendSecondHeader()
    {
        std::optional<SecondHeader> header = readSecondHeader(m_original);
        if (!header)
            return;
        const auto at = std::uint32_t(m_file.size());
        const auto size = std::uint32_t(m_sections.find("AcDb:Template").size());
        const auto copyPlaces = [&](std::uint32_t templateAt) {
            for (Record &copy : header->records) {
                if (copy.at == 0 && copy.size == 0)
                    continue;
                for (const Record &record : m_records) {
                    if (record.number == copy.number)
                        copy = record.number == 4 ? Record{4, templateAt, size} : record;
                }
            }
        };
        copyPlaces(at); // A place takes as many bits whatever it is.
        const QByteArray measured = writeSecondHeader(*header, at, m_contents.handleSeed);
        copyPlaces(at + std::uint32_t(measured.size()));
        m_file += writeSecondHeader(*header, at, m_contents.handleSeed);
    }

    void finishHeader()
    {
        for (std::size_t i = 0; i < m_records.size(); ++i) {
            const std::size_t at = kRecords + i * kRecord;
            m_file[qsizetype(at)] = char(m_records[i].number);
            putNumber(m_file, at + 1, m_records[i].at);
            putNumber(m_file, at + 5, m_records[i].size);
        }
        const std::size_t end = kRecords + m_records.size() * kRecord;
        putNumber(m_file, end, crc16(viewOf(m_file).substr(0, end)));
    }

    const FileContents &m_contents;
    std::string_view m_original;
    PackedSections &m_sections;
    std::vector<Record> m_old, m_records;
    QByteArray m_file;
};

} // namespace

QByteArray packPlain(const FileContents &contents, PackedSections &sections)
{
    return PlainFile(contents, sections).pack();
}

} // namespace dwg
