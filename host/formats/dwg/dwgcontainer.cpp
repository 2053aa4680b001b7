#include "host/formats/dwg/dwgcontainer.h"

#include "host/base/host_text.h"
#include "host/formats/dwg/dwgchecksums.h"

#include <algorithm>
#include <array>

namespace dwg
{

DrawingVersion versionOf(std::string_view file)
{
    static constexpr std::array kReadable{DrawingVersion::r13,   DrawingVersion::r14,   DrawingVersion::r2000,
                                          DrawingVersion::r2004, DrawingVersion::r2007, DrawingVersion::r2010,
                                          DrawingVersion::r2013, DrawingVersion::r2018};
    for (const DrawingVersion version : kReadable) {
        if (file.starts_with("AC" + std::to_string(int(version))))
            return version;
    }
    return DrawingVersion::unknown;
}

void Container::warn(const QString &sentence)
{
    if (warnings.size() < kMostWarnings)
        warnings.append(sentence);
}

void Container::warnOfLoss(const QString &sentence)
{
    if (damage.isEmpty())
        damage = sentence;
    warn(sentence);
}

std::size_t unpackedLimit(std::string_view file)
{
    return 32 * file.size() + (std::size_t(16) << 20);
}

base::Result<Container, QString> openContainer(std::string_view file)
{
    constexpr std::size_t kHeader = 0x80;
    Container container;
    container.file = file;
    container.version = versionOf(file);
    if (file.size() < kHeader)
        return base::Failure{Host::tr("the file is too short")};
    container.maintenance = std::uint8_t(file[0x0B]);
    container.codePage = numberAt<std::uint16_t>(file, 0x13);
    const bool isPlain = container.version < DrawingVersion::r2004;
    constexpr std::uint32_t kEncrypted = 0x3;
    if (!isPlain && (numberAt<std::uint32_t>(file, 0x18) & kEncrypted))
        return base::Failure{Host::tr("the drawing is encrypted; save it without a password first")};
    const auto opened = isPlain                                      ? openPlain(file, container)
                        : container.version == DrawingVersion::r2007 ? openPaged21(file, container)
                                                                     : openPaged(file, container);
    if (!opened)
        return base::Failure{opened.error()};
    container.objects = isPlain ? file : container.section("AcDb:AcDbObjects");
    for (const char *const needed : {"AcDb:Header", "AcDb:Classes", "AcDb:Handles"}) {
        if (container.section(needed).empty())
            return base::Failure{Host::tr("the section %1 is missing").arg(QLatin1String(needed))};
    }
    if (container.objects.empty())
        return base::Failure{Host::tr("the section %1 is missing").arg(QLatin1String("AcDb:AcDbObjects"))};
    return container;
}

/// Some writers do not count the sentinel at the end of a section.
static std::string_view withEnd(std::string_view file, std::uint64_t at, std::string_view part,
                                std::string_view end)
{
    const bool isCounted = part.ends_with(end);
    const bool follows = partOf(file, at + part.size(), end.size()) == end;
    return !isCounted && follows && !part.empty() ? partOf(file, at, part.size() + end.size()) : part;
}

base::Result<void, QString> openPlain(std::string_view file, Container &container)
{
    constexpr std::size_t kFirstRecord = 0x19;
    constexpr std::size_t kRecord = 9;
    static constexpr const char *kNames[] = {"AcDb:Header",       "AcDb:Classes",  "AcDb:Handles",
                                             "AcDb:ObjFreeSpace", "AcDb:Template", "AcDb:AuxHeader"};
    const std::uint32_t records = numberAt<std::uint32_t>(file, 0x15);
    if (records < 3 || records > 64)
        return base::Failure{Host::tr("the file says nowhere where its sections are")};
    const std::size_t end = kFirstRecord + records * kRecord;
    // Before AC1015 the sum was mixed with a number for the count of records.
    static constexpr std::uint16_t kMixed[] = {0xA598, 0x8101, 0x3CC4, 0x8461};
    const std::uint16_t told = numberAt<std::uint16_t>(file, end);
    const std::string_view covered = partOf(file, 0, end);
    const bool isOldSum = records <= 6 && (crc16(covered, 0) ^ kMixed[records - 3]) == told;
    if (crc16(covered) != told && !isOldSum)
        container.warn(Host::tr("the checksum of the file's header is wrong"));
    for (std::uint32_t i = 0; i < records; ++i) {
        const std::size_t at = kFirstRecord + i * kRecord;
        const std::uint8_t number = std::uint8_t(partOf(file, at, 1).empty() ? 0xFF : file[at]);
        const std::uint32_t place = numberAt<std::uint32_t>(file, at + 1);
        std::string_view part = partOf(file, place, numberAt<std::uint32_t>(file, at + 5));
        if (number < std::size(kSectionEnds))
            part = withEnd(file, place, part, kSectionEnds[number]);
        if (number < std::size(kNames) && !part.empty())
            container.sections[kNames[number]] = QByteArray::fromRawData(part.data(), qsizetype(part.size()));
    }
    return {};
}

} // namespace dwg
