#include "host/formats/dwg/dwgmap.h"

#include "host/base/host_text.h"
#include "host/formats/dwg/dwgchecksums.h"
#include "host/formats/dwg/dwgheader.h"

#include <algorithm>

namespace dwg
{

std::vector<MapEntry> readObjectMap(Container &container)
{
    std::vector<MapEntry> entries;
    std::string_view map = container.section("AcDb:Handles");
    entries.reserve(map.size() / 3);
    int badChunks = 0;
    const auto bigEndian = [](std::string_view bytes, std::size_t at) {
        return at + 2 <= bytes.size()
                   ? std::size_t(std::uint8_t(bytes[at])) << 8 | std::uint8_t(bytes[at + 1])
                   : 0;
    };
    bool ended = false;
    while (!ended && map.size() >= 2) {
        const std::size_t size = bigEndian(map, 0);
        if (size < 2 || size + 2 > map.size())
            break;
        if (crc16(map.substr(0, size)) != bigEndian(map, size))
            ++badChunks;
        ended = size == 2;
        Bits pairs(map.substr(2, size - 2));
        MapEntry last{0, 0};
        while (pairs.bitsLeft() >= 16) {
            last.handle += pairs.modularChar();
            last.offset += std::uint64_t(pairs.signedModularChar());
            if (pairs.failed())
                break;
            entries.push_back(last);
        }
        map.remove_prefix(size + 2);
    }
    if (badChunks != 0)
        container.warnOfLoss(Host::tr("%1 parts of the object map have a wrong checksum").arg(badChunks));
    if (!ended)
        container.warnOfLoss(Host::tr("the object map has no end"));
    if (!std::ranges::is_sorted(entries, {}, &MapEntry::handle))
        std::ranges::stable_sort(entries, {}, &MapEntry::handle);
    return entries;
}

/// Texts of class records; the same streams as those of an object.
static QString classText(const FileFacts &facts, SectionStreams &in)
{
    if (facts.hasTextStream()) {
        const std::size_t length = std::uint16_t(in.texts.bitShort());
        if (in.texts.position() + length * 16 > in.textsEnd) {
            in.texts.fail();
            return {};
        }
        QString text;
        for (std::size_t i = 0; i < length; ++i)
            text.append(QChar(in.texts.rawShort()));
        return text;
    }
    QByteArray bytes = in.data.bytes(std::uint16_t(in.data.bitShort()));
    while (bytes.endsWith('\0'))
        bytes.chop(1);
    return decodeText({bytes.constData(), std::size_t(bytes.size())}, facts.codec);
}

std::vector<DwgClass> readClasses(const FileFacts &facts, Container &container)
{
    using namespace std::string_view_literals;
    constexpr std::string_view kBegin = "\x8D\xA1\xC4\xB8\xC4\xA9\xF8\xC5\xC0\xDC\xF4\x5F\xE7\xCF\xB6\x8A"sv;
    std::vector<DwgClass> classes;
    SectionStreams in = sectionStreams(facts, framedSection(container, "AcDb:Classes", kBegin));
    const bool isNew = facts.since(DrawingVersion::r2004);
    int highest = INT16_MAX;
    if (isNew) {
        highest = in.data.bitShort();
        in.data.rawChar();
        in.data.rawChar();
        in.data.bit();
    }
    while (!in.data.failed() && !in.texts.failed() && in.data.bitsLeft() > 32) {
        DwgClass next;
        next.number = in.data.bitShort();
        if (next.number < kFirstClass || next.number > highest)
            break;
        next.proxyFlags = std::uint16_t(in.data.bitShort());
        next.application = classText(facts, in);
        next.className = classText(facts, in);
        next.dxfName = classText(facts, in).toUtf8();
        next.wasProxy = in.data.bit();
        next.isEntity = in.data.bitShort() == kProxyEntity;
        if (isNew) {
            in.data.bitLong(); // How many there are.
            next.version = in.data.bitLong();
            next.maintenance = in.data.bitLong();
            in.data.bitLong();
            in.data.bitLong();
        }
        if (in.data.failed() || in.texts.failed())
            break;
        const bool isLast = isNew && next.number == highest;
        classes.push_back(std::move(next));
        if (isLast)
            break;
    }
    if (in.data.failed() || in.texts.failed())
        container.warnOfLoss(Host::tr("the class records behind %1 could not be read").arg(int(classes.size())));
    return classes;
}

} // namespace dwg
