#include "host/formats/dwg/dwgdecoder.h"

#include "host/formats/dwg/dwgkinds.h"
#include "host/formats/dwg/dwgspecials.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace dwg
{

void Decoder::angle(int group, double radians)
{
    const double degrees = radians * 180.0 / std::numbers::pi;
    if (in.kept)
        in.kept->angles.add(degrees, radians);
    real(group, degrees);
}

void Decoder::color(int group, const Color &color)
{
    // 62 has its true colour in 420, 63 in 421 ...
    const int subclass = group / kSubclass * kSubclass;
    const int trueColor = 420 + group % kSubclass - 62 + subclass;
    integer(group, color.rgb ? nearestColorIndex(*color.rgb) : color.index);
    if (color.rgb && group % kSubclass >= 62 && group % kSubclass <= 69)
        integer(trueColor, *color.rgb);
}

QString Decoder::recordName(std::uint64_t record) const
{
    const auto found = neighbours.recordNames.find(record);
    const QString name = found == neighbours.recordNames.end() ? QString() : found->second;
    if (in.kept)
        in.kept->names.add(name, record);
    return name;
}

const resbuf *Decoder::find(int group) const
{
    const auto found = std::ranges::find(out, group, &resbuf::restype);
    return found == out.end() ? nullptr : &*found;
}

void Decoder::optionalHandle(int group)
{
    if (const std::uint64_t named = in.reference().handle)
        handle(group, named);
}

void Decoder::addFlags(std::int64_t flags)
{
    const auto known = std::ranges::find(out, 70, &resbuf::restype);
    if (known != out.end())
        known->assign(known->integer() | flags);
}

void Decoder::remove(int group)
{
    std::erase_if(out, [group](const resbuf &each) { return each.restype == group; });
}

std::size_t Decoder::count(std::int64_t told, std::size_t bits)
{
    if (told < 0 || std::uint64_t(told) > in.data.bitsLeft() / bits) {
        in.data.fail();
        return 0;
    }
    return std::size_t(told);
}

/// The nine shades of each colour that the standard palette has.
static std::uint32_t paletteColor(int index)
{
    static constexpr std::array<std::uint32_t, 10> kFirst{0x000000, 0xFF0000, 0xFFFF00, 0x00FF00, 0x00FFFF,
                                                          0x0000FF, 0xFF00FF, 0xFFFFFF, 0x414141, 0x808080};
    static constexpr std::array<std::uint32_t, 6> kGreys{0x333333, 0x505050, 0x696969,
                                                         0x828282, 0xBEBEBE, 0xFFFFFF};
    if (index < 10)
        return kFirst[std::size_t(index)];
    if (index >= 250)
        return kGreys[std::size_t(index - 250)];
    const int shade = index / 10 - 1;
    const double hue = shade / 24.0 * 6.0;
    static constexpr std::array<double, 5> kValues{1.0, 0.74, 0.506, 0.408, 0.31};
    const double value = kValues[std::size_t(index % 10 / 2)] * 255.0;
    const double low = index % 2 ? value * 0.667 : 0.0;
    const auto channel = [&](double offset) {
        const double x = std::fmod(hue + offset, 6.0);
        const double share = std::clamp(std::abs(x - 3.0) - 1.0, 0.0, 1.0);
        return std::uint32_t(std::lround(low + (value - low) * share));
    };
    return channel(0.0) << 16 | channel(4.0) << 8 | channel(2.0);
}

int nearestColorIndex(std::uint32_t rgb)
{
    const auto part = [](std::uint32_t color, int shift) { return int(color >> shift & 0xFF); };
    int best = 7;
    int least = INT32_MAX;
    for (int index = 1; index < 256; ++index) {
        const std::uint32_t candidate = paletteColor(index);
        int distance = 0;
        for (const int shift : {16, 8, 0}) {
            const int difference = part(candidate, shift) - part(rgb, shift);
            distance += difference * difference;
        }
        if (distance < least) {
            least = distance;
            best = index;
        }
    }
    return best;
}

// Fields -----------------------------------------------------------------------------------------

static void readField(const Field &field, int place, Decoder &d)
{
    using Code = Field::Code;
    Bits &data = d.in.data;
    const auto put = [&](resbuf::Value value) {
        if (field.group != 0)
            d.add(field.group, std::move(value));
        else
            d.hidden(place, std::move(value));
    };
    switch (field.code) {
    case Code::b:
        return put(std::int64_t(data.bit()));
    case Code::bs:
        return put(std::int64_t(data.bitShort()));
    case Code::bl:
        return put(std::int64_t(data.bitLong()));
    case Code::rc:
        return put(std::int64_t(data.rawChar()));
    case Code::rs:
        return put(std::int64_t(data.rawShort()));
    case Code::rl:
        return put(std::int64_t(data.rawLong()));
    case Code::bll:
        return put(std::int64_t(data.bitLongLong()));
    case Code::bd:
        return put(data.bitDouble());
    case Code::rd:
        return put(data.rawDouble());
    case Code::bt:
        return put(data.thickness(d.in.version()));
    case Code::angle:
        return d.angle(field.group, data.bitDouble());
    case Code::text:
        return put(d.in.text());
    case Code::p2bd:
        return put(data.point2());
    case Code::p3bd:
        return put(data.point3());
    case Code::p2rd:
        return put(data.rawPoint2());
    case Code::p3rd:
        return put(data.rawPoint3());
    case Code::be:
        return put(data.extrusion(d.in.version()));
    case Code::color:
        return d.color(field.group, d.in.color());
    case Code::colorValue:
        return put(std::int64_t(d.in.color().index));
    case Code::handle:
        return put(AcDbHandle{d.in.reference().handle});
    case Code::name:
        return put(d.recordName(d.in.reference().handle));
    case Code::special:
        return field.special(d);
    }
}

void readFields(const Kind &kind, Decoder &decoder)
{
    const int version = int(decoder.in.version());
    for (std::size_t i = 0; i < kind.fields.size(); ++i) {
        const Field &field = kind.fields[i];
        if (version >= field.since && (field.until == 0 || version < field.until) && decoder.in.good())
            readField(field, int(i), decoder);
    }
}

bool isAbsent(const Group &group, const resbuf::Value &value)
{
    if (!group.hasDefault)
        return false;
    const QString *const text = std::get_if<QString>(&value);
    const QString *const usual = std::get_if<QString>(&group.absent);
    if (text && usual)
        return text->compare(*usual, Qt::CaseInsensitive) == 0;
    const double *const real = std::get_if<double>(&value);
    const double *const usualReal = std::get_if<double>(&group.absent);
    if (real && usualReal)
        return std::abs(*real - *usualReal) <= 1e-12;
    return value == group.absent;
}

/// Brings what was read into the order of DXF.
static void putInOrder(const Kind &kind, ResbufList &read, ResbufList &out)
{
    std::vector<bool> used(read.size());
    const auto put = [&](std::size_t i) {
        read[i].restype %= kSubclass;
        out.push_back(std::move(read[i]));
    };
    for (const Group &group : kind.groups) {
        if (!group.marker.isEmpty()) {
            out.emplace_back(100, group.marker);
            continue;
        }
        const auto isMeant = [&](int code) {
            return group.code != 0 ? code == group.code
                                   : std::ranges::find(kind.groups, code, &Group::code) == kind.groups.end();
        };
        for (std::size_t i = 0; i < read.size(); ++i) {
            if (used[i] || !isMeant(read[i].restype))
                continue;
            used[i] = true;
            if (!isAbsent(group, read[i].resval))
                put(i);
        }
    }
}

// What all objects have --------------------------------------------------------------------------

static void appendCommonHead(const ObjectReader &reader, const QByteArray &kindName, ResbufList &out)
{
    out.emplace_back(0, QString::fromLatin1(kindName));
    if (kindName == "TABLE")
        return;
    out.emplace_back(kindName == "DIMSTYLE" ? 105 : 5, AcDbHandle{reader.handle()});
}

static void appendLinks(const Common &common, std::uint64_t owner, ResbufList &out)
{
    if (common.dictionary != 0) {
        out.emplace_back(102, QStringLiteral("{ACAD_XDICTIONARY"));
        out.emplace_back(360, AcDbHandle{common.dictionary});
        out.emplace_back(102, QStringLiteral("}"));
    }
    if (!common.reactors.empty()) {
        out.emplace_back(102, QStringLiteral("{ACAD_REACTORS"));
        for (const std::uint64_t reactor : common.reactors)
            out.emplace_back(330, AcDbHandle{reactor});
        out.emplace_back(102, QStringLiteral("}"));
    }
    out.emplace_back(330, AcDbHandle{owner});
}

static void appendGraphics(const ObjectReader &reader, const Common &common, ResbufList &out)
{
    if (common.graphicsSize == 0)
        return;
    Bits at = reader.dataFrom(common.graphicsBegin);
    const QByteArray bytes = at.bytes(common.graphicsSize);
    out.emplace_back(reader.facts().since(DrawingVersion::r2010) ? 160 : 92, std::int64_t(bytes.size()));
    constexpr qsizetype kChunk = 127;
    for (qsizetype i = 0; i < bytes.size(); i += kChunk)
        out.emplace_back(310, bytes.mid(i, kChunk));
}

static void appendEntityHead(const ObjectReader &reader, const Common &common, const Neighbours &neighbours,
                             std::uint64_t owner, ResbufList &out)
{
    const auto name = [&neighbours](std::uint64_t record) {
        const auto found = neighbours.recordNames.find(record);
        return found == neighbours.recordNames.end() ? QString() : found->second;
    };
    const auto integer = [&out](int group, std::int64_t value) { out.emplace_back(group, value); };
    out.emplace_back(100, QStringLiteral("AcDbEntity"));
    if (common.entityMode == 1 || neighbours.sheetBlocks.contains(owner))
        integer(67, 1);
    const QString layer = name(common.layer);
    out.emplace_back(8, layer.isEmpty() ? QStringLiteral("0") : layer);
    if (common.linetypeFlags == 1)
        out.emplace_back(6, QStringLiteral("ByBlock"));
    else if (common.linetypeFlags == 2)
        out.emplace_back(6, QStringLiteral("Continuous"));
    else if (common.linetypeFlags == 3 && !name(common.linetype).isEmpty())
        out.emplace_back(6, name(common.linetype));
    if (common.materialFlags == 3 && common.material != 0)
        out.emplace_back(347, AcDbHandle{common.material});
    std::optional<std::uint32_t> rgb;
    int color = common.color;
    if (common.trueColor && *common.trueColor >> 24 == 0xC3)
        color = int(*common.trueColor & 0x1FF);
    else if (common.trueColor && *common.trueColor >> 24 == 0xC2)
        rgb = *common.trueColor & 0xFFFFFF;
    if (rgb)
        color = nearestColorIndex(*rgb);
    if (color != 256)
        integer(62, color);
    if (rgb)
        integer(420, *rgb);
    if (const auto book = neighbours.bookColors.find(common.bookColor); book != neighbours.bookColors.end())
        out.emplace_back(430, book->second);
    if (common.transparency)
        integer(440, *common.transparency);
    if (common.linetypeScale != 1.0)
        out.emplace_back(48, common.linetypeScale);
    if (common.visibility & 1)
        integer(60, 1);
    if (common.lineweight != 29)
        integer(370, lineweightOf(common.lineweight));
    if (common.shadowFlags != 0)
        integer(284, common.shadowFlags);
    if (common.plotStyleFlags == 3 && common.plotStyle != 0)
        out.emplace_back(390, AcDbHandle{common.plotStyle});
    appendGraphics(reader, common, out);
}

// Extended data ----------------------------------------------------------------------------------

static QString extendedText(const ObjectReader &reader, Bits &data)
{
    if (reader.facts().hasTextStream()) {
        const std::size_t length = data.rawShort();
        if (length > data.bitsLeft() / 16)
            return {};
        QString text(qsizetype(length), Qt::Uninitialized);
        for (QChar &unit : text)
            unit = QChar(data.rawShort());
        return text;
    }
    const std::size_t length = data.rawChar();
    const std::uint16_t page = data.rawShort(); // The other byte first.
    const auto number = std::uint16_t(page << 8 | page >> 8);
    const auto codec = base::TextCodec::fromDwgNumber(number);
    const QByteArray bytes = data.bytes(length);
    if (reader.kept)
        reader.kept->extendedPage = number;
    return decodeText({bytes.constData(), std::size_t(bytes.size())},
                      codec.known() ? codec : reader.facts().codec);
}

static bool extendedItem(const ObjectReader &reader, const Neighbours &neighbours, Bits &data,
                         ResbufList &out)
{
    const int code = 1000 + data.rawChar();
    if (data.failed())
        return false;
    const auto bigEndianHandle = [&data] {
        std::uint64_t value = 0;
        for (int i = 0; i < 8; ++i)
            value = value << 8 | data.rawChar();
        return value;
    };
    switch (code) {
    case 1000:
    case 1001:
        out.emplace_back(code, extendedText(reader, data));
        break;
    case 1002:
        out.emplace_back(code, data.rawChar() ? QStringLiteral("}") : QStringLiteral("{"));
        break;
    case 1003: {
        const auto layer = neighbours.recordNames.find(bigEndianHandle());
        out.emplace_back(code, layer == neighbours.recordNames.end() ? QString() : layer->second);
        break;
    }
    case 1004:
        out.emplace_back(code, data.bytes(data.rawChar()));
        break;
    case 1005:
        out.emplace_back(code, AcDbHandle{bigEndianHandle()});
        break;
    case 1070:
        out.emplace_back(code, std::int64_t(std::int16_t(data.rawShort())));
        break;
    case 1071:
        out.emplace_back(code, std::int64_t(std::int32_t(data.rawLong())));
        break;
    default:
        if (code >= 1010 && code <= 1013)
            out.emplace_back(code, data.rawPoint3());
        else if (code >= 1040 && code <= 1042)
            out.emplace_back(code, data.rawDouble());
        else
            return false;
    }
    return !data.failed();
}

void appendExtendedData(const ObjectReader &reader, const Common &common, const Neighbours &neighbours,
                        ResbufList &out)
{
    Bits at = reader.dataFrom(common.extendedBegin);
    while (const std::size_t size = std::uint16_t(at.bitShort())) {
        const std::uint64_t application = at.handle(0).handle;
        const QByteArray bytes = at.bytes(size);
        if (at.failed())
            return;
        const auto name = neighbours.recordNames.find(application);
        out.emplace_back(1001, name == neighbours.recordNames.end() ? QString() : name->second);
        Bits data(std::string_view(bytes.constData(), std::size_t(bytes.size())));
        while (data.bitsLeft() >= 8 && extendedItem(reader, neighbours, data, out)) {
        }
    }
}

// Objects without a table ------------------------------------------------------------------------

static void appendBits(int countGroup, int group, const QByteArray &bytes, std::size_t bits, ResbufList &out)
{
    constexpr qsizetype kChunk = 127;
    out.emplace_back(countGroup, std::int64_t(bits));
    for (qsizetype i = 0; i < bytes.size(); i += kChunk)
        out.emplace_back(group, bytes.mid(i, kChunk));
}

/// The form in which DXF carries the bits of an object that a program does not know.
static void appendProxy(ObjectReader &reader, bool isEntity, int classVersion, ResbufList &out)
{
    out.emplace_back(100, isEntity ? QStringLiteral("AcDbProxyEntity") : QStringLiteral("AcDbProxyObject"));
    out.emplace_back(90, std::int64_t(isEntity ? kProxyEntity : kProxyObject));
    std::int64_t classId = reader.type();
    std::int64_t version = classVersion;
    std::int64_t maintenance = 0;
    bool isDxf = false;
    const bool isProxy = reader.type() == kProxyEntity || reader.type() == kProxyObject;
    if (isProxy && reader.facts().since(DrawingVersion::r2000)) {
        classId = reader.data.bitLong();
        version = reader.data.bitLong();
        if (reader.facts().since(DrawingVersion::r2018))
            maintenance = reader.data.bitLong();
        isDxf = reader.data.bit();
    }
    out.emplace_back(91, classId);
    if (reader.facts().since(DrawingVersion::r2018)) {
        out.emplace_back(71, version & 0xFFFF);
        out.emplace_back(97, maintenance ? maintenance : version >> 16);
    } else if (reader.facts().since(DrawingVersion::r2000)) {
        out.emplace_back(95, version);
    }
    if (reader.facts().since(DrawingVersion::r2000))
        out.emplace_back(70, std::int64_t(isDxf));
    const bool isWide = reader.facts().since(DrawingVersion::r2010);
    if (isWide) {
        Bits texts = reader.data;
        texts.seek(reader.textsBegin());
        const std::size_t count = reader.textsEnd() - reader.textsBegin();
        appendBits(162, 311, texts.bits(count), count, out);
    }
    Bits data = reader.data;
    const std::size_t end = isWide ? reader.dataEnd() : std::max(reader.dataEnd(), reader.textsEnd());
    const std::size_t count = end > data.position() ? end - data.position() : 0;
    appendBits(isWide ? 161 : 93, 310, data.bits(count), count, out);
    while (reader.handles.bitsLeft() >= 8) {
        const HandleRef named = reader.reference();
        if (reader.handles.failed() || named.kind == Reference::none)
            break;
        static constexpr std::array<int, 6> kGroups{0, 0, 350, 360, 330, 340};
        out.emplace_back(kGroups[std::size_t(named.kind)], AcDbHandle{named.handle});
    }
    out.emplace_back(94, std::int64_t(0));
}

/// The head of a symbol table. Its count leaves out what every drawing has.
static void appendTable(ObjectReader &reader, const QString &name, ResbufList &out)
{
    const std::size_t counted = std::size_t(std::max(reader.data.bitLong(), 0));
    out.emplace_back(70, std::int64_t(counted));
    if (name != u"DIMSTYLE" || !reader.facts().since(DrawingVersion::r2000))
        return;
    out.emplace_back(100, QStringLiteral("AcDbDimStyleTable"));
    const std::size_t further = reader.data.rawChar();
    for (std::size_t i = 0; i < counted && reader.good(); ++i)
        reader.reference();
    if (further != 0)
        out.emplace_back(71, std::int64_t(further));
    for (std::size_t i = 0; i < further && reader.good(); ++i)
        out.emplace_back(340, AcDbHandle{reader.reference().handle});
}

void appendHead(const ObjectReader &reader, const Common &common, const Neighbours &neighbours,
                const ObjectPlace &place, ResbufList &out)
{
    const std::uint64_t owner = place.owner != 0 ? place.owner : common.owner.handle;
    appendCommonHead(reader, place.kindName, out);
    if (place.kindName == "TABLE") {
        out.emplace_back(2, place.tableName);
        out.emplace_back(5, AcDbHandle{reader.handle()});
    }
    appendLinks(common, owner, out);
    if (place.isEntity)
        appendEntityHead(reader, common, neighbours, owner, out);
}

// The whole --------------------------------------------------------------------------------------

ResbufList decodeObject(const FileFacts &facts, const Neighbours &neighbours, const ObjectPlace &place)
{
    ResbufList out;
    ObjectReader reader(facts, place.record);
    if (!reader.good())
        return out;
    const Common common = reader.readCommon(place.isEntity);
    const std::uint64_t owner = place.owner != 0 ? place.owner : common.owner.handle;
    appendHead(reader, common, neighbours, place, out);
    if (place.kindName == "TABLE") {
        out.emplace_back(100, QStringLiteral("AcDbSymbolTable"));
        appendTable(reader, place.tableName, out);
    } else if (place.kind) {
        Decoder decoder(reader, common, neighbours);
        decoder.owningBlock = owner;
        readFields(*place.kind, decoder);
        if (place.blockOfBegin.size() != 0)
            appendBlockBegin(facts, place.blockOfBegin, decoder);
        putInOrder(*place.kind, decoder.out, out);
    } else {
        appendProxy(reader, place.isEntity, place.classVersion, out);
    }
    appendExtendedData(reader, common, neighbours, out);
    return out;
}

void appendBlockBegin(const FileFacts &facts, std::string_view header, Decoder &d)
{
    ObjectReader reader(facts, header);
    if (!reader.good())
        return;
    reader.readCommon(false);
    const BlockHeader block = readBlockHeader(reader);
    const QString name = d.recordName(reader.handle());
    d.text(2, name);
    d.integer(70, block.flags());
    d.add(10, block.base);
    d.text(3, name);
    d.text(1, block.path);
    if (!block.description.isEmpty())
        d.text(4, block.description);
}

} // namespace dwg
