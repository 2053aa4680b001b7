#include "host/formats/dwg/dwgmap.h"

#include "host/base/host_text.h"
#include "host/formats/dwg/dwgchecksums.h"
#include "host/formats/dwg/dwgsection.h"

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

using namespace std::string_view_literals;
static constexpr std::string_view kClassesBegin =
    "\x8D\xA1\xC4\xB8\xC4\xA9\xF8\xC5\xC0\xDC\xF4\x5F\xE7\xCF\xB6\x8A"sv;

static DwgClass readClass(const FileFacts &facts, SectionStreams &in)
{
    DwgClass next;
    next.number = in.data.bitShort();
    next.proxyFlags = std::uint16_t(in.data.bitShort());
    next.application = in.text(facts);
    next.className = in.text(facts);
    next.dxfName = in.text(facts).toUtf8();
    next.wasProxy = in.data.bit();
    next.isEntity = in.data.bitShort() == kProxyEntity;
    if (facts.since(DrawingVersion::r2004)) {
        next.instances = in.data.bitLong();
        next.version = in.data.bitLong();
        next.maintenance = in.data.bitLong();
        in.data.bitLong();
        in.data.bitLong();
    }
    return next;
}

/// Since AC1018 the highest number stands first; before, the records end with the section.
static int readHighestClass(const FileFacts &facts, SectionStreams &in)
{
    if (!facts.since(DrawingVersion::r2004))
        return INT16_MAX;
    const int highest = in.data.bitShort();
    in.data.rawChar();
    in.data.rawChar();
    in.data.bit();
    return highest;
}

static bool isClassNext(const SectionStreams &in, int highest)
{
    Bits ahead = in.data;
    if (in.texts.failed() || ahead.failed() || ahead.bitsLeft() <= 32)
        return false;
    const int number = ahead.bitShort();
    return !ahead.failed() && number >= kFirstClass && number <= highest;
}

std::vector<DwgClass> readClasses(const FileFacts &facts, Container &container)
{
    std::vector<DwgClass> classes;
    SectionStreams in = sectionStreams(facts, framedSection(container, "AcDb:Classes", kClassesBegin));
    const int highest = readHighestClass(facts, in);
    while (isClassNext(in, highest)) {
        DwgClass next = readClass(facts, in);
        if (in.data.failed() || in.texts.failed())
            break;
        const bool isLast = next.number == highest;
        classes.push_back(std::move(next));
        if (isLast)
            break;
    }
    if (in.data.failed() || in.texts.failed())
        container.warnOfLoss(
            Host::tr("the class records behind %1 could not be read").arg(int(classes.size())));
    return classes;
}

static void writeClass(const FileFacts &facts, const DwgClass &added, SectionEditor &section)
{
    section.data.bitShort(added.number);
    section.data.bitShort(added.proxyFlags);
    section.putText(added.application);
    section.putText(added.className);
    section.putText(QString::fromUtf8(added.dxfName));
    section.data.bit(added.wasProxy);
    section.data.bitShort(added.isEntity ? kProxyEntity : kProxyObject);
    if (!facts.since(DrawingVersion::r2004))
        return;
    for (const int number : {added.instances, added.version, added.maintenance, 0, 0})
        section.data.bitLong(number);
}

base::Result<QByteArray, QString> encodeClasses(const FileFacts &facts, const Container &container,
                                                const std::vector<DwgClass> &classes)
{
    SectionEditor section(facts, container, container.section("AcDb:Classes"));
    SectionStreams ahead = section.in;
    const int highest = readHighestClass(facts, ahead);
    if (facts.since(DrawingVersion::r2004)) {
        section.in.data.bitShort();
        section.skip();
        section.data.bitShort(classes.empty() ? highest : classes.back().number);
        section.in = ahead;
        section.copy();
    }
    for (const DwgClass &each : classes) {
        const bool isOld = isClassNext(section.in, highest);
        const DwgClass old = isOld ? readClass(facts, section.in) : DwgClass();
        if (isOld && old == each) {
            section.copy();
        } else {
            section.skip();
            writeClass(facts, each, section);
        }
    }
    if (!section.good() || isClassNext(section.in, highest))
        return base::Failure{Host::tr("the drawing's class records are damaged and cannot be written again")};
    return section.finish();
}

} // namespace dwg
