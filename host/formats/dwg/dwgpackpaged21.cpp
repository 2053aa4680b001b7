// Packing files of AC1021: pages behind Reed-Solomon words, two copies of each map and of the header.
//
// What the format fills with random bytes is filled with zeros.
#include "host/formats/dwg/dwgchecksums.h"
#include "host/formats/dwg/dwgcompress.h"
#include "host/formats/dwg/dwgdecompress.h"
#include "host/formats/dwg/dwgpacker.h"
#include "host/formats/dwg/dwgreedsolomon.h"

#include <algorithm>

namespace dwg
{
namespace
{

constexpr std::size_t kHeaderAt = 0x80;
constexpr std::size_t kHeaderPage = 0x400;
constexpr std::size_t kHeaderWords = 3;
constexpr std::size_t kFirstPage = kHeaderAt + kHeaderPage;
constexpr std::size_t kHeaderSize = 0x110;
constexpr std::size_t kPageUnit = 0x20;
constexpr std::size_t kCrcUnit = 8;
constexpr std::uint64_t kFirstNumber = 3; // Of pages with data.

std::size_t wordsFor(std::size_t size, const ReedSolomonCode &code)
{
    return (size + code.data - 1) / code.data;
}

/// The shorter of the bytes and their packed form.
QByteArray packed(std::string_view plain)
{
    QByteArray shorter = compress21(plain);
    return std::size_t(shorter.size()) < plain.size() ? shorter
                                                      : QByteArray(plain.data(), qsizetype(plain.size()));
}

/// A map as it is stored, and what the header says of it.
struct SystemPage {
    QByteArray bytes;
    std::uint64_t packed = 0, size = 0, repeats = 0, crcPacked = 0, crc = 0;
};

/// The page holds the map at least twice. Its size depends on the plain size alone, so that the map of pages
/// can count its own.
std::size_t systemPageSize(std::size_t size)
{
    const std::size_t words = wordsFor(roundedUp(size, kCrcUnit) * 2, kSystemPages);
    return std::max<std::size_t>(kHeaderPage, roundedUp(words * kCodeWord, kPageUnit));
}

SystemPage systemPage(std::string_view map)
{
    SystemPage page;
    QByteArray stored = packed(map);
    page.packed = std::uint64_t(stored.size());
    page.size = map.size();
    page.crc = pageCrc64(map);
    page.crcPacked = pageCrc64(viewOf(stored));
    stored.resize(qsizetype(roundedUp(std::size_t(stored.size()), kCrcUnit)), '\0');
    const std::size_t room = systemPageSize(map.size());
    page.repeats = room / kCodeWord * kSystemPages.data / std::size_t(stored.size());
    const QByteArray repeated = stored.repeated(qsizetype(page.repeats));
    page.bytes = encodeReedSolomon(viewOf(repeated), wordsFor(std::size_t(repeated.size()), kSystemPages),
                                   kSystemPages, WordOrder::interleaved);
    page.bytes.resize(qsizetype(room), '\0');
    return page;
}

class PagedWriter21
{
public:
    PagedWriter21(const Container &original, const PackedSections &sections)
        : m_original(original), m_sections(sections)
    {
    }
    QByteArray write();

private:
    struct Section {
        QByteArray entry;   ///< In the section map.
        std::size_t at = 0; ///< Of its first page; 0 when it has none.
    };
    struct StoredPage {
        std::uint64_t number = 0;
        std::size_t size = 0;
    };

    void writeSection(const SectionForm &form, Section &section);
    QByteArray writePage(std::string_view bytes, std::uint64_t start, std::uint64_t largest, WordOrder order);
    void writeMap(const SystemPage &page, std::uint64_t number);
    void writeHeader(const SystemPage &pages, const SystemPage &sections, std::size_t dataPages);

    const Container &m_original;
    const PackedSections &m_sections;
    QByteArray m_data; ///< Pages behind those of the page map.
    std::vector<StoredPage> m_pages;
    std::size_t m_dataAt = 0;
    QByteArray m_file;
};

QByteArray PagedWriter21::writePage(std::string_view bytes, std::uint64_t start, std::uint64_t largest,
                                    WordOrder order)
{
    const QByteArray stored =
        order == WordOrder::interleaved ? packed(bytes) : QByteArray(bytes.data(), qsizetype(bytes.size()));
    const std::size_t words = wordsFor(roundedUp(std::size_t(stored.size()), kCrcUnit), kDataPages);
    const std::uint64_t number = kFirstNumber + m_pages.size();
    QByteArray coded = encodeReedSolomon(viewOf(stored), words, kDataPages, order);
    coded.resize(qsizetype(roundedUp(std::size_t(coded.size()), kPageUnit)), '\0');
    m_pages.push_back({number, std::size_t(coded.size())});
    m_data += coded;
    QByteArray entry;
    for (const std::uint64_t value :
         {start, largest, number, std::uint64_t(bytes.size()), std::uint64_t(stored.size()),
          std::uint64_t(pageChecksum21(bytes)), pageCrc64(viewOf(stored))})
        appendNumber(entry, value);
    return entry;
}

void PagedWriter21::writeSection(const SectionForm &form, Section &section)
{
    constexpr std::uint64_t kInterleaved = 4;
    const std::string_view description = viewOf(form.description);
    const auto order = numberAt<std::uint64_t>(description, 0x30) == kInterleaved ? WordOrder::interleaved
                                                                                  : WordOrder::parityBehind;
    const std::string_view found = m_sections.find(form.name);
    QByteArray bytes(found.data(), qsizetype(found.size()));
    section.at = m_dataAt + std::size_t(m_data.size());
    if (form.name == "AcDb:Preview")
        bytes = movedPreview(viewOf(bytes), form.at, section.at);
    std::size_t page = std::max<std::size_t>(numberAt<std::uint64_t>(description, 0x08), kPageUnit);
    if (order == WordOrder::parityBehind) // Readers expect such sections in one page.
        page = std::max(page, roundedUp(std::size_t(bytes.size()), kPageUnit));
    QByteArray entries;
    std::uint64_t pages = 0;
    for (std::size_t start = 0; start < std::size_t(bytes.size()); start += page) {
        const std::string_view part = viewOf(bytes).substr(start, page);
        if (std::ranges::all_of(part, [](char byte) { return byte == 0; }))
            continue;
        entries += writePage(part, start, page, order);
        ++pages;
    }
    if (pages == 0)
        section.at = 0;
    section.entry = form.description;
    putNumber(section.entry, 0x00, std::uint64_t(bytes.size()));
    putNumber(section.entry, 0x08, std::uint64_t(page));
    putNumber(section.entry, 0x38, pages);
    section.entry += entries;
}

/// The last word is that of the header itself; all before it is what the original's header says.
void PagedWriter21::writeHeader(const SystemPage &pages, const SystemPage &sections, std::size_t dataPages)
{
    const std::string_view old = viewOf(m_original.head);
    const std::int32_t oldPacked = numberAt<std::int32_t>(old, 0x18);
    const std::string_view oldBytes = partOf(old, 0x20, std::uint64_t(std::abs(std::int64_t(oldPacked))));
    QByteArray header = oldPacked < 0 ? QByteArray(oldBytes.data(), qsizetype(oldBytes.size()))
                                      : decompress21(oldBytes, kHeaderSize).bytes;
    header.resize(qsizetype(kHeaderSize), '\0');
    const std::uint64_t last = kFirstNumber + dataPages - 1;
    const std::uint64_t end = std::uint64_t(m_file.size());
    const std::uint64_t mapSize = std::uint64_t(pages.bytes.size());
    const std::pair<std::size_t, std::uint64_t> values[] = {
        {0x08, end + kHeaderPage},
        {0x10, pages.crcPacked},
        {0x18, pages.repeats},
        {0x28, mapSize},
        {0x30, last + 6},
        {0x38, 0},
        {0x40, last + 5},
        {0x48, end - kFirstPage},
        {0x50, pages.packed},
        {0x58, pages.size},
        {0x60, dataPages + 4},
        {0x68, last + 6},
        {0x80, pages.crc},
        {0xA8, sections.crc},
        {0xB0, sections.packed},
        {0xB8, last + 2},
        {0xC0, last + 1},
        {0xC8, sections.size},
        {0xD0, sections.crcPacked},
        {0xD8, sections.repeats},
        {0x108, 0},
    };
    for (const auto &[at, value] : values)
        putNumber(header, at, value);
    putNumber(header, 0x108, headerCrc64(viewOf(header)));
    // In front of it, and once more behind: what the check sequence covers does not change.
    const QByteArray shorter = packed(viewOf(header));
    const bool isPacked = shorter.size() < header.size();
    QByteArray block = m_original.head.left(0x10);
    appendNumber(block, headerCrc64(viewOf(shorter)));
    appendNumber(block, std::int64_t(isPacked ? shorter.size() : -shorter.size()));
    block += shorter;
    block.resize(qsizetype(roundedUp(std::size_t(block.size()), kCrcUnit)), '\0');
    const std::size_t room = kHeaderWords * kSystemPages.data;
    const QByteArray repeated = block.repeated(qsizetype(room) / block.size());
    const QByteArray coded =
        encodeReedSolomon(viewOf(repeated), kHeaderWords, kSystemPages, WordOrder::interleaved);
    m_file.replace(qsizetype(kHeaderAt), coded.size(), coded);
    m_file += m_file.mid(qsizetype(kHeaderAt), qsizetype(kHeaderPage));
}

QByteArray PagedWriter21::write()
{
    constexpr std::size_t kMapEntry = 16, kMapPages = 4;
    const std::vector<SectionForm> &forms = m_original.forms;
    // The page map stands first, twice, and the preview says where it stands itself: as many pages as the
    // sections could need, counted before any is written.
    std::size_t pages = kMapPages;
    for (const SectionForm &form : forms) {
        const auto page =
            std::max<std::uint64_t>(numberAt<std::uint64_t>(viewOf(form.description), 0x08), kPageUnit);
        pages += (m_sections.find(form.name).size() + std::size_t(page) - 1) / std::size_t(page);
    }
    const std::size_t mapPage = systemPageSize(pages * kMapEntry);
    m_dataAt = kFirstPage + 2 * mapPage;
    std::vector<Section> sections(forms.size());
    for (const std::size_t i : fileOrder(m_original))
        writeSection(forms[i], sections[i]);
    QByteArray sectionMap;
    for (const Section &section : sections)
        sectionMap += section.entry;
    const SystemPage sectionPage = systemPage(viewOf(sectionMap));
    const std::uint64_t last = kFirstNumber + m_pages.size() - 1;
    QByteArray pageMap;
    const auto note = [&pageMap](std::uint64_t number, std::size_t size) {
        appendNumber(pageMap, std::uint64_t(size));
        appendNumber(pageMap, number);
    };
    note(last + 5, mapPage);
    note(last + 6, mapPage);
    for (const StoredPage &page : m_pages)
        note(page.number, page.size);
    note(last + 1, std::size_t(sectionPage.bytes.size()));
    note(last + 2, std::size_t(sectionPage.bytes.size()));
    SystemPage mapPages = systemPage(viewOf(pageMap));
    mapPages.bytes.resize(qsizetype(mapPage), '\0');

    m_file = QByteArray(m_original.file.data(), kFirstPage);
    m_file += mapPages.bytes + mapPages.bytes + m_data + sectionPage.bytes + sectionPage.bytes;
    std::vector<std::size_t> places;
    places.reserve(sections.size());
    for (const Section &section : sections)
        places.push_back(section.at);
    putPlaces(m_file, m_original, places);
    writeHeader(mapPages, sectionPage, m_pages.size());
    return std::move(m_file);
}

} // namespace

QByteArray packPaged21(const FileContents &contents, PackedSections &sections)
{
    return PagedWriter21(contents.original, sections).write();
}

} // namespace dwg
