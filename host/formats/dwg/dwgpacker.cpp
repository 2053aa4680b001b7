#include "host/formats/dwg/dwgpacker.h"

#include "host/base/host_text.h"
#include "host/formats/dwg/dwgchecksums.h"
#include "host/formats/dwg/dwgmap.h"

#include <algorithm>
#include <numeric>

namespace dwg
{

QString whyNotPacked(const Container &original)
{
    if (original.version < DrawingVersion::r2000)
        return Host::tr("DWG files of versions before 2000 can be read, but not written");
    if (original.version >= DrawingVersion::r2004 && numberAt<std::uint32_t>(original.file, 0x18) != 0)
        return Host::tr("the drawing is signed or protected, which a changed drawing would not be");
    if (!original.damage.isEmpty())
        return Host::tr("the file was damaged when it was opened (%1)").arg(original.damage);
    return {};
}

QString withWayOut(const QString &reason)
{
    return Host::tr("%1; save the drawing as DXF (SAVEAS with a name that ends in .dxf)").arg(reason);
}

// Objects ----------------------------------------------------------------------------------------

std::vector<PackedObject> storedObjects(Container &container)
{
    const FileFacts facts{container.version, base::TextCodec::fromDwgNumber(container.codePage)};
    std::vector<PackedObject> objects;
    for (const MapEntry &entry : readObjectMap(container)) {
        const std::string_view rest = container.objects.substr(
            std::size_t(std::min<std::uint64_t>(entry.offset, container.objects.size())));
        const ObjectReader reader(facts, rest);
        const bool isSecond = !objects.empty() && objects.back().handle == entry.handle;
        if (reader.good() && reader.handle() == entry.handle && reader.size() <= rest.size()) {
            if (!isSecond) // Readers take the first.
                objects.push_back({entry.handle, rest.substr(0, reader.size())});
        } else {
            container.warnOfLoss(
                Host::tr("object %1 is damaged").arg(QString::number(entry.handle, 16).toUpper()));
        }
    }
    return objects;
}

static void appendModular(QByteArray &bytes, std::uint64_t value, unsigned lastBits, unsigned sign)
{
    for (; value > lastBits; value >>= 7)
        bytes.append(char(0x80 | (value & 0x7F)));
    bytes.append(char(value | sign));
}

static void appendBigEndian(QByteArray &bytes, unsigned value)
{
    bytes.append(char(value >> 8)).append(char(value & 0xFF));
}

/// Parts of the map begin anew, so that each can be read by itself.
class MapWriter
{
public:
    void add(std::uint64_t handle, std::uint64_t place)
    {
        constexpr qsizetype kLongestPart = 2032;
        QByteArray pair = pairOf(handle, place);
        if (m_pairs.size() + pair.size() + 2 > kLongestPart) {
            finishPart();
            pair = pairOf(handle, place);
        }
        m_pairs += pair;
        m_handle = handle;
        m_place = place;
    }
    QByteArray take()
    {
        if (!m_pairs.isEmpty())
            finishPart();
        finishPart();
        return std::move(m_map);
    }

private:
    QByteArray pairOf(std::uint64_t handle, std::uint64_t place) const
    {
        QByteArray pair;
        appendModular(pair, handle - m_handle, 0x7F, 0);
        const bool isBack = place < m_place;
        appendModular(pair, isBack ? m_place - place : place - m_place, 0x3F, isBack ? 0x40 : 0);
        return pair;
    }
    void finishPart()
    {
        QByteArray part;
        appendBigEndian(part, unsigned(m_pairs.size()) + 2);
        part += m_pairs;
        appendBigEndian(part, crc16(viewOf(part)));
        m_map += part;
        m_pairs.clear();
        m_handle = m_place = 0;
    }

    QByteArray m_map;
    QByteArray m_pairs; ///< Of the part in the making.
    std::uint64_t m_handle = 0, m_place = 0;
};

PlacedObjects placeObjects(const std::vector<PackedObject> &objects, std::uint64_t begin)
{
    std::size_t size = sizeof kObjectsMark;
    for (const PackedObject &object : objects)
        size += object.record.size();
    PlacedObjects placed;
    placed.bytes.reserve(qsizetype(size));
    appendNumber(placed.bytes, kObjectsMark);
    MapWriter map;
    for (const PackedObject &object : objects) {
        map.add(object.handle, begin + std::uint64_t(placed.bytes.size()));
        placed.bytes.append(object.record.data(), qsizetype(object.record.size()));
    }
    placed.map = map.take();
    return placed;
}

// Sections ---------------------------------------------------------------------------------------

PackedSections::PackedSections(const FileContents &contents)
    : m_original(contents.original), m_changed(contents.sections)
{
    settleAuxiliaryHeader(contents.handleSeed);
    settleObjectCount(contents.objects.size());
    settleProgram();
}

std::string_view PackedSections::find(const QByteArray &name) const
{
    if (name == "AcDb:Signature")
        return {}; // It vouched for another file.
    const auto changed = m_changed.find(name);
    return changed == m_changed.end() ? m_original.section(name) : viewOf(changed->second);
}

void PackedSections::settleAuxiliaryHeader(std::uint64_t seed)
{
    const QByteArray name = "AcDb:AuxHeader";
    const std::string_view section = find(name);
    const std::size_t at = m_original.version >= DrawingVersion::r2018 ? 0x55 : 0x4F;
    if (section.size() < at + 4 || seed == 0)
        return;
    QByteArray bytes(section.data(), qsizetype(section.size()));
    putNumber(bytes, at, seed < 0x7FFFFFFF ? std::uint32_t(seed) : 0xFFFFFFFFu);
    set(name, std::move(bytes));
}

/// AC1018 holds a number that nobody could explain.
void PackedSections::settleObjectCount(std::size_t objects)
{
    const QByteArray name = "AcDb:ObjFreeSpace";
    const std::string_view section = find(name);
    const bool isWide = m_original.version >= DrawingVersion::r2010;
    if (section.size() < 16 || m_original.version == DrawingVersion::r2004 ||
        m_original.version == DrawingVersion::r2007)
        return;
    QByteArray bytes(section.data(), qsizetype(section.size()));
    if (isWide)
        putNumber(bytes, 8, std::uint64_t(objects));
    else
        putNumber(bytes, 4, std::uint32_t(objects));
    set(name, std::move(bytes));
}

/// A text with its length and a zero, in units of one byte or two.
static void appendText(QByteArray &bytes, std::string_view text, bool isWide)
{
    appendNumber(bytes, std::uint16_t(text.size() + 1));
    for (const char unit : std::string(text) + '\0') {
        bytes.append(unit);
        if (isWide)
            bytes.append('\0');
    }
}

/// Which program saved the file. What vouched for the one before is void.
void PackedSections::settleProgram()
{
    constexpr std::string_view kList = "AppInfoDataList";
    constexpr std::string_view kComment = "This file was last saved by Quillnote.";
    constexpr std::string_view kProduct =
        "<ProductInformation name =\"Quillnote\" build_version=\"1.0\" registry_version=\"1.0\" "
        "install_id_string=\"Quillnote\" registry_localeID=\"1033\"/>";
    constexpr std::string_view kVersion = "1.0";
    const QByteArray name = "AcDb:AppInfo";
    const std::string_view section = find(name);
    if (section.size() < 8)
        return;
    QByteArray bytes;
    const bool isOldForm = section.substr(2).starts_with("App"); // Of AC1018.
    if (isOldForm) {
        appendText(bytes, kList, false);
        appendNumber(bytes, std::uint32_t(2));
        for (const std::string_view text : {std::string_view("4001"), kProduct, kVersion})
            appendText(bytes, text, false);
    } else {
        const QByteArray noChecksum(16, '\0');
        appendNumber(bytes, numberAt<std::uint32_t>(section, 0));
        appendText(bytes, kList, true);
        appendNumber(bytes, std::uint32_t(3));
        for (const std::string_view text : {kVersion, kComment, kProduct}) {
            bytes += noChecksum;
            appendText(bytes, text, true);
        }
    }
    set(name, std::move(bytes));
}

QByteArray movedPreview(std::string_view preview, std::uint64_t from, std::uint64_t to)
{
    constexpr std::size_t kCountAt = 20, kEntry = 9;
    QByteArray moved(preview.data(), qsizetype(preview.size()));
    const std::size_t count = preview.size() > kCountAt ? std::uint8_t(preview[kCountAt]) : 0;
    for (std::size_t i = 0; i < count && kCountAt + 1 + (i + 1) * kEntry <= preview.size(); ++i) {
        const std::size_t at = kCountAt + 2 + i * kEntry;
        const auto place = numberAt<std::uint32_t>(preview, at);
        if (place >= from && place - from <= preview.size())
            putNumber(moved, at, std::uint32_t(place - from + to));
    }
    return moved;
}

std::vector<std::size_t> fileOrder(const Container &original)
{
    std::vector<std::size_t> order(original.forms.size());
    std::iota(order.begin(), order.end(), std::size_t(0));
    std::ranges::stable_sort(order, {}, [&original](std::size_t i) { return original.forms[i].at; });
    return order;
}

void putPlaces(QByteArray &file, const Container &original, const std::vector<std::size_t> &places)
{
    static constexpr struct {
        std::size_t at;
        const char *section;
    } kPlaces[] = {{0x0D, "AcDb:Preview"},
                   {0x20, "AcDb:SummaryInfo"},
                   {0x24, "AcDb:VBAProject"},
                   {0x2C, "AcDb:AppInfo"},
                   {0x30, "AcDb:AppInfoHistory"}};
    for (const auto &place : kPlaces) {
        const bool isNamed = numberAt<std::uint32_t>(original.file, place.at) != 0;
        for (std::size_t i = 0; isNamed && i < places.size(); ++i) {
            if (places[i] != 0 && original.forms[i].name == place.section)
                putNumber(file, place.at, std::uint32_t(places[i]));
        }
    }
}

// Files ------------------------------------------------------------------------------------------

base::Result<QByteArray, QString> packFile(const FileContents &contents)
{
    const Container &original = contents.original;
    if (const QString reason = whyNotPacked(original); !reason.isEmpty())
        return base::Failure{reason};
    PackedSections sections(contents);
    if (original.version < DrawingVersion::r2004)
        return packPlain(contents, sections);
    // Places of objects count from the begin of their section.
    PlacedObjects placed = placeObjects(contents.objects, 0);
    sections.set("AcDb:AcDbObjects", std::move(placed.bytes));
    sections.set("AcDb:Handles", std::move(placed.map));
    return original.version == DrawingVersion::r2007 ? packPaged21(contents, sections)
                                                     : packPaged(contents, sections);
}

} // namespace dwg
