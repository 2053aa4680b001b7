// Packing files of AC1018, AC1024, AC1027 and AC1032: pages, their map, and the map of sections.
#include "host/formats/dwg/dwgchecksums.h"
#include "host/formats/dwg/dwgcompress.h"
#include "host/formats/dwg/dwgpacker.h"

#include <zlib.h>

#include <algorithm>

namespace dwg
{
namespace
{

constexpr std::uint32_t kPageMapType = 0x41630E3B;
constexpr std::uint32_t kSectionMapType = 0x4163003B;
constexpr std::uint32_t kDataPageType = 0x4163043B;
constexpr std::size_t kHeaderAt = 0x80;
constexpr std::size_t kHeaderSize = 0x6C;
constexpr std::size_t kFirstPage = 0x100;
constexpr std::size_t kPageUnit = 0x20;
constexpr std::size_t kPageHeader = 32;
constexpr std::size_t kSystemHeader = 20;

/// What the section map says of a page.
struct PageEntry {
    std::uint32_t number;
    std::uint32_t stored;
    std::uint64_t start;
};

/// A section as it stands in the new file.
struct Packed {
    QByteArray description;
    std::vector<PageEntry> pages;
    std::size_t at = 0; ///< Of its first page.
};

bool isZero(std::string_view bytes)
{
    return std::ranges::all_of(bytes, [](char byte) { return byte == 0; });
}

QByteArray systemHeader(std::uint32_t type, std::size_t size, std::string_view packed)
{
    QByteArray head;
    for (const std::size_t value : {std::size_t(type), size, packed.size(), std::size_t(2), std::size_t(0)})
        appendNumber(head, std::uint32_t(value));
    putNumber(head, 16, pageChecksum(pageChecksum(0, viewOf(head)), packed));
    return head;
}

class PagedWriter
{
public:
    PagedWriter(const Container &original, const PackedSections &sections)
        : m_original(original), m_sections(sections)
    {
    }
    QByteArray write();

private:
    void writeSection(const SectionForm &form, Packed &packed);
    PageEntry writePage(std::uint32_t section, std::string_view bytes, std::uint64_t start, bool compressed);
    void fillUp();
    void notePage(std::uint32_t number, std::size_t size);
    void writeSectionMap(const std::vector<Packed> &sections);
    void writePageMap();
    void writeHeader(std::size_t pageMapAt, std::size_t secondHeaderAt);

    const Container &m_original;
    const PackedSections &m_sections;
    QByteArray m_file;
    QByteArray m_pageMap;
    std::uint32_t m_lastPage = 0;   ///< Of those with data.
    std::uint32_t m_pageCount = 0;  ///< With the maps.
    std::size_t m_end = kFirstPage; ///< Of all pages, as their map has it.
};

/// What is left of a page up to its end is the begin of the masking sequence.
void PagedWriter::fillUp()
{
    const std::size_t size = roundedUp(std::size_t(m_file.size()), kPageUnit) - std::size_t(m_file.size());
    m_file += masked18(viewOf(QByteArray(qsizetype(size), '\0')));
}

void PagedWriter::notePage(std::uint32_t number, std::size_t size)
{
    appendNumber(m_pageMap, number);
    appendNumber(m_pageMap, std::uint32_t(size));
    ++m_pageCount;
    m_end += size;
}

PageEntry PagedWriter::writePage(std::uint32_t section, std::string_view bytes, std::uint64_t start,
                                 bool compressed)
{
    const QByteArray stored =
        compressed ? compress18(bytes) : QByteArray(bytes.data(), qsizetype(bytes.size()));
    const std::size_t at = std::size_t(m_file.size());
    const std::size_t size = roundedUp(kPageHeader + std::size_t(stored.size()), kPageUnit);
    const std::uint32_t dataSum = pageChecksum(0, viewOf(stored));
    QByteArray head;
    for (const std::uint64_t value :
         {std::uint64_t(kDataPageType), std::uint64_t(section), std::uint64_t(stored.size()),
          std::uint64_t(size), start & 0xFFFFFFFF, start >> 32, std::uint64_t(0), std::uint64_t(dataSum)})
        appendNumber(head, std::uint32_t(value));
    putNumber(head, 24, pageChecksum(dataSum, viewOf(head)));
    const std::uint32_t mask = 0x4164536B ^ std::uint32_t(at);
    for (std::size_t i = 0; i < kPageHeader; i += 4)
        putNumber(head, i, numberAt<std::uint32_t>(viewOf(head), i) ^ mask);
    m_file += head + stored;
    fillUp();
    notePage(++m_lastPage, size);
    return {m_lastPage, std::uint32_t(stored.size()), start};
}

/// Pages are filled up with zeros before they are packed; those of nothing else are left out.
void PagedWriter::writeSection(const SectionForm &form, Packed &packed)
{
    constexpr std::size_t kSmallestPage = 0x80;
    packed.description = form.description;
    QByteArray bytes(m_sections.find(form.name).data(), qsizetype(m_sections.find(form.name).size()));
    const auto section = numberAt<std::uint32_t>(viewOf(form.description), 0x18);
    const bool compressed = numberAt<std::uint32_t>(viewOf(form.description), 0x14) == 2;
    std::size_t page =
        std::max<std::size_t>(numberAt<std::uint32_t>(viewOf(form.description), 0x0C), kPageUnit);
    if (!compressed) // Readers expect such sections in one page.
        page = std::max(page, roundedUp(std::size_t(bytes.size()), kSmallestPage));
    packed.at = std::size_t(m_file.size());
    if (form.name == "AcDb:Preview")
        bytes = movedPreview(viewOf(bytes), form.at + kPageHeader, packed.at + kPageHeader);
    const std::size_t size = std::size_t(bytes.size());
    bytes.resize(qsizetype(roundedUp(size, page)), '\0');
    for (std::size_t start = 0; start < size; start += page) {
        const std::string_view part = viewOf(bytes).substr(start, page);
        if (!isZero(part))
            packed.pages.push_back(writePage(section, part, start, compressed));
    }
    if (packed.pages.empty())
        packed.at = 0;
    putNumber(packed.description, 0, std::uint64_t(size));
    putNumber(packed.description, 8, std::uint32_t(packed.pages.size()));
    putNumber(packed.description, 12, std::uint32_t(page));
}

void PagedWriter::writeSectionMap(const std::vector<Packed> &sections)
{
    constexpr std::uint32_t kBehindData = 3; // What the number of the map is counted from the last page.
    QByteArray map;
    for (const std::size_t value :
         {sections.size(), std::size_t(2), std::size_t(0x7400), std::size_t(0), sections.size()})
        appendNumber(map, std::uint32_t(value));
    for (const Packed &section : sections) {
        map += section.description;
        for (const PageEntry &page : section.pages) {
            appendNumber(map, page.number);
            appendNumber(map, page.stored);
            appendNumber(map, page.start);
        }
    }
    const QByteArray packed = compress18(viewOf(map));
    const std::size_t at = std::size_t(m_file.size());
    m_file += systemHeader(kSectionMapType, std::size_t(map.size()), viewOf(packed)) + packed;
    fillUp();
    notePage(m_lastPage + kBehindData, std::size_t(m_file.size()) - at);
}

/// The map names itself, with a size that it does not need.
void PagedWriter::writePageMap()
{
    constexpr std::uint32_t kBehindData = 4;
    constexpr std::size_t kEntry = 8;
    const std::size_t atMost = std::size_t(m_pageMap.size()) * 2 + kEntry + 0x100;
    notePage(m_lastPage + kBehindData, roundedUp(kSystemHeader + atMost, kPageUnit));
    const QByteArray packed = compress18(viewOf(m_pageMap));
    m_file += systemHeader(kPageMapType, std::size_t(m_pageMap.size()), viewOf(packed)) + packed;
    m_file += systemHeader(kPageMapType, 0, {});
}

void PagedWriter::writeHeader(std::size_t pageMapAt, std::size_t secondHeaderAt)
{
    constexpr std::uint32_t kSectionMap = 3, kPageMap = 4;
    QByteArray head = m_original.head;
    const auto put32 = [&head](std::size_t at, std::size_t value) {
        putNumber(head, at, std::uint32_t(value));
    };
    for (const std::size_t gap : {0x18, 0x1C, 0x20, 0x3C, 0x64})
        put32(gap, 0); // There are none.
    put32(0x28, m_lastPage + kPageMap);
    putNumber(head, 0x2C, std::uint64_t(m_end - kFirstPage));
    putNumber(head, 0x34, std::uint64_t(secondHeaderAt));
    put32(0x40, m_pageCount);
    put32(0x50, m_lastPage + kPageMap);
    putNumber(head, 0x54, std::uint64_t(pageMapAt - kFirstPage));
    put32(0x5C, m_lastPage + kSectionMap);
    put32(0x60, m_lastPage + kPageMap);
    put32(0x68, 0);
    put32(0x68, crc32(0, reinterpret_cast<const Bytef *>(head.constData()), uInt(head.size())));
    const QByteArray masked = masked18(viewOf(head));
    m_file.replace(qsizetype(kHeaderAt), qsizetype(kHeaderSize), masked);
    m_file += masked;
}

QByteArray PagedWriter::write()
{
    const std::vector<SectionForm> &forms = m_original.forms;
    m_file = QByteArray(m_original.file.data(), kFirstPage);
    std::vector<Packed> sections(forms.size());
    for (const std::size_t i : fileOrder(m_original))
        writeSection(forms[i], sections[i]);
    std::vector<std::size_t> places;
    places.reserve(sections.size());
    for (const Packed &section : sections)
        places.push_back(section.at == 0 ? 0 : section.at + kPageHeader);
    putPlaces(m_file, m_original, places);
    writeSectionMap(sections);
    const std::size_t pageMapAt = std::size_t(m_file.size());
    writePageMap();
    writeHeader(pageMapAt, std::size_t(m_file.size()));
    return std::move(m_file);
}

} // namespace

QByteArray packPaged(const FileContents &contents, PackedSections &sections)
{
    return PagedWriter(contents.original, sections).write();
}

} // namespace dwg
