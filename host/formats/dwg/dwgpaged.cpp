// The container of AC1018, AC1024, AC1027 and AC1032.
#include "host/base/host_text.h"
#include "host/formats/dwg/dwgchecksums.h"
#include "host/formats/dwg/dwgcontainer.h"
#include "host/formats/dwg/dwgdecompress.h"

#include <zlib.h>

#include <unordered_map>

namespace dwg
{
namespace
{

constexpr std::uint32_t kPageMapType = 0x41630E3B;
constexpr std::uint32_t kSectionMapType = 0x4163003B;
constexpr std::uint32_t kDataPageType = 0x4163043B;
constexpr std::size_t kHeaderSize = 0x6C;
constexpr std::uint64_t kFirstPage = 0x100;

struct Page {
    std::uint64_t at = 0;
    std::uint64_t size = 0;
};

/// Reads one file; the container gets what it finds.
class PagedFile
{
public:
    PagedFile(std::string_view file, Container &container) : m_file(file), m_container(container) {}
    base::Result<void, QString> open();

private:
    bool readHeader();
    bool takeHeader(std::string_view masked);
    QByteArray systemPage(std::uint64_t at, std::uint32_t type);
    bool readPageMap();
    bool readSectionMap(const QByteArray &map);
    bool readSection(std::string_view description, std::string_view pages);
    void readPage(const QByteArray &name, std::string_view description, std::string_view entry,
                  QByteArray &section);
    void warn(const QString &sentence) { m_container.warn(sentence); }

    std::string_view m_file;
    Container &m_container;
    QByteArray m_header;
    std::unordered_map<std::int64_t, Page> m_pages;
    std::size_t m_unpacked = 0;
    std::size_t m_work = 0; ///< Bytes that pages gave.
};

bool PagedFile::takeHeader(std::string_view masked)
{
    if (masked.size() != kHeaderSize)
        return false;
    m_header = masked18(masked);
    QByteArray summed = m_header;
    const auto told = numberAt<std::uint32_t>(viewOf(summed), 0x68);
    summed.replace(0x68, 4, QByteArray(4, '\0'));
    const auto sum = crc32(0, reinterpret_cast<const Bytef *>(summed.constData()), uInt(summed.size()));
    return m_header.startsWith("AcFssFcAJMB") && sum == told;
}

/// The file has a copy of its header at its end.
bool PagedFile::readHeader()
{
    const std::string_view first = partOf(m_file, 0x80, kHeaderSize);
    if (takeHeader(first))
        return true;
    if (m_file.size() > 2 * kHeaderSize && takeHeader(m_file.substr(m_file.size() - kHeaderSize))) {
        warn(Host::tr("the checksum of the file's header is wrong; its copy at the end is used"));
        return true;
    }
    m_header = masked18(first);
    warn(Host::tr("the checksum of the file's header is wrong"));
    return m_header.startsWith("AcFssFcAJMB");
}

QByteArray PagedFile::systemPage(std::uint64_t at, std::uint32_t type)
{
    constexpr std::size_t kPageHeader = 0x14;
    const std::string_view head = partOf(m_file, at, kPageHeader);
    if (head.empty() || numberAt<std::uint32_t>(head, 0) != type)
        return {};
    const std::uint32_t size = numberAt<std::uint32_t>(head, 4);
    const std::string_view packed = partOf(m_file, at + kPageHeader, numberAt<std::uint32_t>(head, 8));
    if (size > unpackedLimit(m_file) - m_unpacked)
        return {};
    QByteArray summed(head.data(), qsizetype(head.size()));
    summed.replace(0x10, 4, QByteArray(4, '\0'));
    if (pageChecksum(pageChecksum(0, viewOf(summed)), packed) != numberAt<std::uint32_t>(head, 0x10))
        warn(type == kPageMapType ? Host::tr("the checksum of the page map is wrong")
                                  : Host::tr("the checksum of the section map is wrong"));
    m_unpacked += size;
    return decompress18(packed, size).bytes;
}

bool PagedFile::readPageMap()
{
    constexpr std::size_t kEntry = 8;
    constexpr std::size_t kGap = 16; // A page that is no longer in use has more to it.
    const std::uint64_t at = numberAt<std::uint64_t>(viewOf(m_header), 0x54) + kFirstPage;
    const QByteArray map = systemPage(at, kPageMapType);
    std::uint64_t offset = kFirstPage;
    for (std::size_t i = 0; i + kEntry <= std::size_t(map.size()); i += kEntry) {
        const auto number = numberAt<std::int32_t>(viewOf(map), i);
        const auto size = numberAt<std::uint32_t>(viewOf(map), i + 4);
        if (number > 0)
            m_pages[number] = {offset, size};
        else
            i += kGap;
        offset += size;
    }
    return !m_pages.empty();
}

bool PagedFile::readSectionMap(const QByteArray &map)
{
    constexpr std::size_t kHead = 0x14;
    constexpr std::size_t kDescription = 0x60;
    constexpr std::size_t kPageEntry = 16;
    const std::string_view view = viewOf(map);
    const std::uint32_t count = numberAt<std::uint32_t>(view, 0);
    std::size_t at = kHead;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::string_view description = partOf(view, at, kDescription);
        if (description.empty()) {
            m_container.warnOfLoss(Host::tr("the section map is cut off"));
            break;
        }
        const std::uint64_t pages = numberAt<std::uint32_t>(description, 0x08);
        const std::string_view entries = partOf(view, at + kDescription, pages * kPageEntry);
        if (entries.empty() && pages != 0) {
            m_container.warnOfLoss(Host::tr("the section map is cut off"));
            break;
        }
        if (!readSection(description, entries))
            return false;
        at += kDescription + std::size_t(pages) * kPageEntry;
    }
    return true;
}

/// False when the section is larger than the file could need.
bool PagedFile::readSection(std::string_view description, std::string_view pages)
{
    constexpr std::size_t kPageEntry = 16;
    const std::uint64_t size = numberAt<std::uint64_t>(description, 0);
    const std::string_view name = description.substr(0x20, 64);
    const QByteArray sectionName(name.data(), qsizetype(std::min(name.find('\0'), name.size())));
    const auto first = pages.empty() ? m_pages.end() : m_pages.find(numberAt<std::int32_t>(pages, 0));
    m_container.forms.push_back({sectionName, QByteArray(description.data(), qsizetype(description.size())),
                                 first == m_pages.end() ? 0 : first->second.at});
    if (sectionName.isEmpty())
        return true;
    if (size > unpackedLimit(m_file) - m_unpacked)
        return false;
    m_unpacked += std::size_t(size);
    QByteArray section(qsizetype(size), '\0'); // Pages of nothing but zeros are not in the file.
    // A page that is named again and again would cost more than the file is worth.
    for (; !pages.empty() && m_work <= unpackedLimit(m_file); pages.remove_prefix(kPageEntry))
        readPage(sectionName, description, pages.substr(0, kPageEntry), section);
    m_container.sections[sectionName] = std::move(section);
    return m_work <= unpackedLimit(m_file);
}

void PagedFile::readPage(const QByteArray &name, std::string_view description, std::string_view entry,
                         QByteArray &section)
{
    constexpr std::size_t kPageHeader = 32;
    const auto number = numberAt<std::int32_t>(entry, 0);
    const auto page = m_pages.find(number);
    const QString what = QStringLiteral("%1 of %2").arg(number).arg(QString::fromLatin1(name));
    const std::string_view masked =
        page == m_pages.end() ? std::string_view() : partOf(m_file, page->second.at, kPageHeader);
    if (masked.empty()) {
        m_container.warnOfLoss(Host::tr("page %1 is missing").arg(what));
        return;
    }
    const std::uint32_t mask = 0x4164536B ^ std::uint32_t(page->second.at);
    std::uint32_t head[8];
    for (std::size_t i = 0; i < 8; ++i)
        head[i] = numberAt<std::uint32_t>(masked, 4 * i) ^ mask;
    const std::string_view stored = partOf(m_file, page->second.at + kPageHeader, head[2]);
    const std::uint64_t start = numberAt<std::uint64_t>(entry, 8);
    if (head[0] != kDataPageType || stored.empty() || start > std::uint64_t(section.size())) {
        m_container.warnOfLoss(Host::tr("page %1 is damaged and was left out").arg(what));
        return;
    }
    const std::uint32_t dataSum = head[7];
    const std::uint32_t summed[8] = {head[0], head[1], head[2], head[3], head[4], head[5], 0, dataSum};
    const std::string_view summedBytes(reinterpret_cast<const char *>(summed), sizeof summed);
    if (pageChecksum(0, stored) != dataSum || pageChecksum(dataSum, summedBytes) != head[6])
        warn(Host::tr("the checksum of page %1 is wrong").arg(what));
    // Pages are filled up with zeros before they are packed: the last one holds more than its section needs.
    const std::size_t room = std::size_t(section.size()) - std::size_t(start);
    const std::size_t limit =
        std::min<std::size_t>(numberAt<std::uint32_t>(description, 0x0C), unpackedLimit(m_file));
    const bool packed = numberAt<std::uint32_t>(description, 0x14) == 2;
    QByteArray bytes;
    if (packed) {
        auto unpacked = decompress18(stored, limit);
        if (!unpacked.whole)
            m_container.warnOfLoss(
                Host::tr("page %1 is damaged behind byte %2").arg(what).arg(unpacked.bytes.size()));
        bytes = std::move(unpacked.bytes);
    } else {
        bytes = QByteArray::fromRawData(stored.data(), qsizetype(stored.size()));
    }
    m_work += std::size_t(bytes.size());
    const std::size_t count = std::min(room, std::size_t(bytes.size()));
    std::memcpy(section.data() + start, bytes.constData(), count);
}

base::Result<void, QString> PagedFile::open()
{
    if (!readHeader())
        return base::Failure{Host::tr("the file's header is damaged")};
    if (!readPageMap())
        return base::Failure{Host::tr("the page map is missing or damaged")};
    const auto sectionMap = m_pages.find(numberAt<std::int32_t>(viewOf(m_header), 0x5C));
    const QByteArray map =
        sectionMap == m_pages.end() ? QByteArray() : systemPage(sectionMap->second.at, kSectionMapType);
    if (map.isEmpty())
        return base::Failure{Host::tr("the section map is missing or damaged")};
    if (!readSectionMap(map))
        return base::Failure{Host::tr("the sections would be far larger than the file")};
    m_container.head = m_header;
    return {};
}

} // namespace

QByteArray masked18(std::string_view bytes)
{
    QByteArray other(bytes.data(), qsizetype(bytes.size()));
    std::uint32_t seed = 1;
    for (char &byte : other) {
        seed = seed * 0x343FD + 0x269EC3;
        byte = char(byte ^ char(seed >> 16));
    }
    return other;
}

base::Result<void, QString> openPaged(std::string_view file, Container &container)
{
    return PagedFile(file, container).open();
}

} // namespace dwg
