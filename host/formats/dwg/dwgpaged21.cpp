// The container of AC1021: pages behind Reed-Solomon codes.
//
// A code word is 255 bytes: so many of data, the rest parity. The words of a page are interleaved, or data
// and parity stand one behind the other.
#include "host/base/host_text.h"
#include "host/formats/dwg/dwgchecksums.h"
#include "host/formats/dwg/dwgcontainer.h"
#include "host/formats/dwg/dwgdecompress.h"
#include "host/formats/dwg/dwgreedsolomon.h"

#include <unordered_map>
#include <vector>

namespace dwg
{
namespace
{

constexpr std::uint64_t kFirstPage = 0x480;

std::uint64_t aligned8(std::uint64_t size)
{
    return (size + 7) & ~std::uint64_t(7);
}

/// What the file header says of one of the two maps.
struct MapPlace {
    std::uint64_t at;
    std::uint64_t packed;
    std::uint64_t size;
    std::uint64_t repeats;
    std::uint64_t crcPacked;
    std::uint64_t crc;
};

/// What the section map says of a page.
struct PageEntry {
    std::uint64_t start, pageSize, number, size, packed, checksum, crc;
};

class PagedFile21
{
public:
    PagedFile21(std::string_view file, Container &container) : m_file(file), m_container(container) {}
    base::Result<void, QString> open();

private:
    bool readHeader();
    std::uint64_t header(std::size_t at) const { return numberAt<std::uint64_t>(viewOf(m_header), at); }
    QByteArray readMap(const MapPlace &place, const QString &name);
    bool readPageMap();
    bool readSectionMap(const QByteArray &map);
    bool readSection(const QByteArray &name, std::uint64_t size, std::uint64_t encoding,
                     std::string_view pages);
    void readPage(const QByteArray &name, std::uint64_t encoding, const PageEntry &page, QByteArray &section);
    void warn(const QString &sentence) { m_container.warn(sentence); }

    std::string_view m_file;
    Container &m_container;
    QByteArray m_header;
    std::unordered_map<std::uint64_t, std::uint64_t> m_pages; ///< Places by number.
    std::size_t m_unpacked = 0;
    std::size_t m_work = 0; ///< Bytes that pages gave.
};

bool PagedFile21::readHeader()
{
    constexpr std::size_t kWords = 3;
    constexpr std::size_t kUnpackedHeader = 0x110;
    const std::string_view stored = partOf(m_file, 0x80, kWords * kCodeWord);
    if (stored.empty())
        return false;
    const Corrected plain = decodeReedSolomon(stored, kWords, kSystemPages);
    if (!plain.clean)
        warn(Host::tr("the file's header was damaged; its code words mended what they could"));
    const std::int32_t packed = numberAt<std::int32_t>(viewOf(plain.bytes), 0x18);
    const std::string_view data =
        partOf(viewOf(plain.bytes), 0x20, std::uint64_t(std::abs(std::int64_t(packed))));
    if (data.empty())
        return false;
    if (headerCrc64(data) != numberAt<std::uint64_t>(viewOf(plain.bytes), 0x10))
        warn(Host::tr("the checksum of the file's header is wrong"));
    auto unpacked = packed < 0 ? Decompressed{QByteArray(data.data(), qsizetype(data.size())), true}
                               : decompress21(data, kUnpackedHeader);
    m_header = std::move(unpacked.bytes);
    m_container.head = plain.bytes;
    return unpacked.whole && std::size_t(m_header.size()) == kUnpackedHeader;
}

QByteArray PagedFile21::readMap(const MapPlace &place, const QString &name)
{
    if (place.size > unpackedLimit(m_file) - m_unpacked || place.packed > m_file.size() ||
        place.repeats > m_file.size())
        return {};
    const std::uint64_t coded = aligned8(place.packed) * place.repeats;
    const std::uint64_t words = (coded + kSystemPages.data - 1) / kSystemPages.data;
    const std::string_view stored = partOf(m_file, place.at, words * kCodeWord);
    if (stored.empty())
        return {};
    Corrected plain = decodeReedSolomon(stored, std::size_t(words), kSystemPages);
    plain.bytes.truncate(qsizetype(place.packed));
    if (pageCrc64(viewOf(plain.bytes)) != place.crcPacked)
        warn(Host::tr("the checksum of the %1 is wrong").arg(name));
    m_unpacked += std::size_t(place.size);
    if (place.packed >= place.size)
        return plain.bytes;
    return decompress21(viewOf(plain.bytes), std::size_t(place.size)).bytes;
}

bool PagedFile21::readPageMap()
{
    constexpr std::size_t kEntry = 16;
    const auto mapAt = [this](std::size_t place) {
        return readMap({header(place) + kFirstPage, header(0x50), header(0x58), header(0x18), header(0x10),
                        header(0x80)},
                       Host::tr("page map"));
    };
    QByteArray map = mapAt(0x38);
    if (map.isEmpty())
        map = mapAt(0x28); // The copy.
    std::uint64_t offset = kFirstPage;
    for (std::size_t i = 0; i + kEntry <= std::size_t(map.size()); i += kEntry) {
        const auto size = numberAt<std::uint64_t>(viewOf(map), i);
        const auto number = numberAt<std::int64_t>(viewOf(map), i + 8);
        if (size > m_file.size())
            break;
        m_pages[std::uint64_t(std::abs(number))] = offset;
        offset += size;
    }
    return !m_pages.empty();
}

bool PagedFile21::readSectionMap(const QByteArray &map)
{
    constexpr std::size_t kDescription = 0x40;
    constexpr std::size_t kPageEntry = 56;
    const std::string_view view = viewOf(map);
    for (std::size_t at = 0; at + kDescription <= view.size();) {
        const std::string_view description = view.substr(at);
        const auto nameLength = numberAt<std::uint64_t>(description, 0x20);
        const auto encoding = numberAt<std::uint64_t>(description, 0x30);
        const auto pages = numberAt<std::uint64_t>(description, 0x38);
        if (nameLength > 256 || pages > view.size()) {
            m_container.warnOfLoss(Host::tr("the section map is damaged"));
            break;
        }
        const std::string_view name = partOf(view, at + kDescription, nameLength);
        const std::string_view entries = partOf(view, at + kDescription + nameLength, pages * kPageEntry);
        if (entries.size() != pages * kPageEntry) {
            m_container.warnOfLoss(Host::tr("the section map is cut off"));
            break;
        }
        QByteArray sectionName;
        for (std::size_t i = 0; i + 1 < name.size() && name[i] != '\0'; i += 2)
            sectionName.append(name[i]);
        if (numberAt<std::uint64_t>(description, 0x10) == 1)
            return false;
        const auto first =
            entries.empty() ? m_pages.end() : m_pages.find(numberAt<std::uint64_t>(entries, 0x10));
        m_container.forms.push_back({sectionName,
                                     QByteArray(description.data(), qsizetype(kDescription + nameLength)),
                                     first == m_pages.end() ? 0 : first->second});
        if (!sectionName.isEmpty() &&
            !readSection(sectionName, numberAt<std::uint64_t>(description, 0), encoding, entries))
            return false;
        at += kDescription + std::size_t(nameLength) + std::size_t(pages) * kPageEntry;
    }
    return true;
}

bool PagedFile21::readSection(const QByteArray &name, std::uint64_t size, std::uint64_t encoding,
                              std::string_view pages)
{
    constexpr std::size_t kPageEntry = 56;
    if (size > unpackedLimit(m_file) - m_unpacked)
        return false;
    m_unpacked += std::size_t(size);
    QByteArray section(qsizetype(size), '\0'); // Pages of nothing but zeros are not in the file.
    // A page that is named again and again would cost more than the file is worth.
    for (; !pages.empty() && m_work <= unpackedLimit(m_file); pages.remove_prefix(kPageEntry)) {
        PageEntry page{};
        std::memcpy(&page, pages.data(), sizeof page);
        readPage(name, encoding, page, section);
    }
    m_container.sections[name] = std::move(section);
    return m_work <= unpackedLimit(m_file);
}

void PagedFile21::readPage(const QByteArray &name, std::uint64_t encoding, const PageEntry &page,
                           QByteArray &section)
{
    constexpr std::uint64_t kInterleaved = 4;
    const QString what = QStringLiteral("%1 of %2").arg(page.number).arg(QString::fromLatin1(name));
    const auto place = m_pages.find(page.number);
    const bool fits = page.start <= std::uint64_t(section.size()) && page.packed <= m_file.size() &&
                      page.size <= unpackedLimit(m_file);
    if (place == m_pages.end() || !fits) {
        m_container.warnOfLoss(Host::tr("page %1 is missing").arg(what));
        return;
    }
    const std::uint64_t words = (aligned8(page.packed) + kDataPages.data - 1) / kDataPages.data;
    const bool interleaved = encoding == kInterleaved;
    const std::string_view stored =
        partOf(m_file, place->second, interleaved ? words * kCodeWord : page.packed);
    if (stored.empty()) {
        m_container.warnOfLoss(Host::tr("page %1 is missing").arg(what));
        return;
    }
    // The checksum is cheap; the words are looked at when it says so.
    Corrected plain{interleaved ? dataOfWords(stored, std::size_t(words), kDataPages)
                                : QByteArray(stored.data(), qsizetype(stored.size())),
                    true};
    plain.bytes.truncate(qsizetype(page.packed));
    if (interleaved && pageCrc64(viewOf(plain.bytes)) != page.crc)
        plain = decodeReedSolomon(stored, std::size_t(words), kDataPages);
    plain.bytes.truncate(qsizetype(page.packed));
    if (pageCrc64(viewOf(plain.bytes)) != page.crc)
        warn(Host::tr("the checksum of page %1 is wrong").arg(what));
    else if (!plain.clean)
        warn(Host::tr("page %1 was damaged; its code words mended it").arg(what));
    if (page.packed < page.size) {
        auto unpacked = decompress21(viewOf(plain.bytes), std::size_t(page.size));
        if (!unpacked.whole)
            m_container.warnOfLoss(
                Host::tr("page %1 is damaged behind byte %2").arg(what).arg(unpacked.bytes.size()));
        plain.bytes = std::move(unpacked.bytes);
    }
    m_work += std::size_t(plain.bytes.size());
    const std::size_t room = std::size_t(section.size()) - std::size_t(page.start);
    std::memcpy(section.data() + page.start, plain.bytes.constData(),
                std::min(room, std::size_t(plain.bytes.size())));
}

base::Result<void, QString> PagedFile21::open()
{
    if (!readHeader())
        return base::Failure{Host::tr("the file's header is damaged")};
    if (!readPageMap())
        return base::Failure{Host::tr("the page map is missing or damaged")};
    const auto place = m_pages.find(header(0xC0));
    const QByteArray map =
        place == m_pages.end()
            ? QByteArray()
            : readMap({place->second, header(0xB0), header(0xC8), header(0xD8), header(0xD0), header(0xA8)},
                      Host::tr("section map"));
    if (map.isEmpty())
        return base::Failure{Host::tr("the section map is missing or damaged")};
    if (!readSectionMap(map))
        return base::Failure{Host::tr("the sections are encrypted or would be far larger than the file")};
    return {};
}

} // namespace

base::Result<void, QString> openPaged21(std::string_view file, Container &container)
{
    return PagedFile21(file, container).open();
}

} // namespace dwg
