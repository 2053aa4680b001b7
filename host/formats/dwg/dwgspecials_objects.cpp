// Fields of table records and other objects that no simple code describes.
#include "host/formats/dwg/dwgspecials.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace dwg
{

RecordHead readRecordHead(ObjectReader &in)
{
    RecordHead head;
    head.name = in.text();
    if (in.facts().since(DrawingVersion::r2007)) {
        head.flags = in.data.bitShort() == 256 ? 16 : 0;
        return head;
    }
    const bool isUsed = in.data.bit();
    in.data.bitShort();
    const bool isDependent = in.data.bit();
    static_cast<void>(isUsed); // Older programs wrote it to DXF as 64; nobody needs it.
    head.flags = isDependent ? 16 : 0;
    return head;
}

int BlockHeader::flags() const
{
    return (isAnonymous ? 1 : 0) | (hasAttributes ? 2 : 0) | (isXref ? 4 : 0) | (isOverlay ? 8 : 0) |
           (head.flags & 16) | (isXref && !isUnloaded ? 32 : 0);
}

/// `at` and what is in front of it are read; handles follow.
static void readBlockHandles(ObjectReader &in, BlockHeader &block, std::size_t owned, std::size_t inserts)
{
    const auto next = [&in] { return in.reference().handle; };
    if (owned + inserts > in.handles.bitsLeft() / 8) {
        in.handles.fail();
        return;
    }
    next(); // The external reference that it comes from.
    block.begin = next();
    if (in.facts().since(DrawingVersion::r2004)) {
        for (std::size_t i = 0; i < owned; ++i)
            block.owned.push_back(next());
    } else if (!block.isXref && !block.isOverlay) {
        block.first = next();
        block.last = next();
    }
    block.end = next();
    if (!in.facts().since(DrawingVersion::r2000))
        return;
    for (std::size_t i = 0; i < inserts; ++i)
        block.inserts.push_back(next());
    block.layout = next();
}

BlockHeader readBlockHeader(ObjectReader &in)
{
    BlockHeader block;
    block.head = readRecordHead(in);
    block.isAnonymous = in.data.bit();
    block.hasAttributes = in.data.bit();
    block.isXref = in.data.bit();
    block.isOverlay = in.data.bit();
    if (in.facts().since(DrawingVersion::r2000))
        block.isUnloaded = in.data.bit();
    const std::size_t owned = in.facts().since(DrawingVersion::r2004) && !block.isXref && !block.isOverlay
                                  ? std::size_t(std::max(in.data.bitLong(), 0))
                                  : 0;
    block.base = in.data.point3();
    block.path = in.text();
    std::size_t inserts = 0;
    if (in.facts().since(DrawingVersion::r2000)) {
        while (in.data.rawChar() != 0 && !in.data.failed())
            ++inserts;
        block.description = in.text();
        block.preview = in.data.bytes(std::size_t(std::max(in.data.bitLong(), 0)));
    }
    if (in.facts().since(DrawingVersion::r2007)) {
        block.insertUnits = in.data.bitShort();
        block.isExplodable = in.data.bit();
        block.scaling = in.data.rawChar();
    }
    readBlockHandles(in, block, owned, inserts);
    return block;
}

namespace
{

void recordHead(Decoder &d)
{
    const RecordHead head = readRecordHead(d.in);
    d.text(2, head.name);
    d.integer(70, head.flags);
}

void addFlags(Decoder &d, std::int64_t flags)
{
    const auto group = std::ranges::find(d.out, 70, &resbuf::restype);
    if (group != d.out.end())
        group->assign(group->integer() | flags);
}

constexpr std::array<int, 24> kLineweights{0,  5,  9,  13, 15, 18,  20,  25,  30,  35,  40,  50,
                                           53, 60, 70, 80, 90, 100, 106, 120, 140, 158, 200, 211};

int lineweightOf(int index)
{
    if (index >= 0 && index < int(kLineweights.size()))
        return kLineweights[std::size_t(index)];
    return index == 29 ? -1 : index == 30 ? -2 : -3;
}

void layer(Decoder &d)
{
    bool isFrozen = false, isOff = false, isFrozenInNew = false, isLocked = false, isPlotted = true;
    int lineweight = 31;
    const bool isOld = !d.in.facts().since(DrawingVersion::r2000);
    if (isOld) {
        isFrozen = d.in.data.bit();
        isOff = d.in.data.bit();
        isFrozenInNew = d.in.data.bit();
        isLocked = d.in.data.bit();
    } else {
        const int values = d.in.data.bitShort();
        isFrozen = values & 1;
        isOff = values & 2;
        isFrozenInNew = values & 4;
        isLocked = values & 8;
        isPlotted = values & 16;
        lineweight = (values & 0x3E0) >> 5;
    }
    addFlags(d, (isFrozen ? 1 : 0) | (isFrozenInNew ? 2 : 0) | (isLocked ? 4 : 0));
    const ObjectReader::Color color = d.in.color();
    const int index = color.rgb ? nearestColorIndex(*color.rgb) : color.index;
    d.integer(62, isOff ? -std::abs(index) : index);
    if (color.rgb)
        d.integer(420, *color.rgb);
    if (!color.name.isEmpty())
        d.text(430, color.book.isEmpty() ? color.name : color.book + u'$' + color.name);
    d.in.reference();
    if (!isOld) {
        d.integer(290, isPlotted);
        d.integer(370, lineweightOf(lineweight));
        d.handle(390, d.in.reference().handle);
    }
    if (d.in.facts().since(DrawingVersion::r2007))
        d.handle(347, d.in.reference().handle);
    d.text(6, d.recordName(d.in.reference().handle));
    if (d.in.facts().since(DrawingVersion::r2013))
        d.handle(348, d.in.reference().handle);
}

void style(Decoder &d)
{
    const bool isShapeFile = d.in.data.bit();
    const bool isVertical = d.in.data.bit();
    addFlags(d, (isShapeFile ? 1 : 0) | (isVertical ? 4 : 0));
}

struct Dash {
    double length, x, y, scale, rotation;
    int code, flags;
};

/// The texts of a linetype stand together, NUL-terminated; a dash names the place of its own.
QString textOfDash(const Decoder &d, const QByteArray &area, int place)
{
    const bool isWide = d.in.facts().hasTextStream();
    const qsizetype begin = qsizetype(place) * (isWide ? 2 : 1);
    if (place < 0 || begin >= area.size())
        return {};
    if (!isWide) {
        const QByteArray bytes(
            area.constData() + begin,
            qsizetype(qstrnlen(area.constData() + begin, std::size_t(area.size() - begin))));
        return decodeText({bytes.constData(), std::size_t(bytes.size())}, d.in.facts().codec);
    }
    QString text;
    for (qsizetype i = begin; i + 1 < area.size(); i += 2) {
        const QChar unit(std::uint8_t(area[i]) | std::uint8_t(area[i + 1]) << 8);
        if (unit.isNull())
            break;
        text.append(unit);
    }
    return text;
}

void linetype(Decoder &d)
{
    Bits &data = d.in.data;
    constexpr int kHasText = 2;
    constexpr int kHasShape = 4;
    d.text(3, d.in.text());
    d.real(40, data.bitDouble());
    d.integer(72, data.rawChar());
    std::vector<Dash> dashes(data.rawChar());
    bool anyText = false;
    for (Dash &dash : dashes) {
        dash.length = data.bitDouble();
        dash.code = data.bitShort();
        dash.x = data.rawDouble();
        dash.y = data.rawDouble();
        dash.scale = data.bitDouble();
        dash.rotation = data.bitDouble();
        dash.flags = data.bitShort();
        anyText = anyText || dash.flags & kHasText;
    }
    QByteArray texts;
    if (!d.in.facts().hasTextStream())
        texts = data.bytes(256);
    else if (anyText)
        texts = data.bytes(512);
    d.in.reference();
    d.integer(73, std::int64_t(dashes.size()));
    for (const Dash &dash : dashes) {
        const std::uint64_t shapes = d.in.reference().handle;
        d.real(49, dash.length);
        d.integer(74, dash.flags);
        if (!(dash.flags & (kHasText | kHasShape)))
            continue;
        d.integer(75, dash.flags & kHasText ? 0 : dash.code);
        d.handle(340, shapes);
        d.real(46, dash.scale);
        d.angle(50, dash.rotation);
        d.real(44, dash.x);
        d.real(45, dash.y);
        if (dash.flags & kHasText)
            d.text(9, textOfDash(d, texts, dash.code));
    }
}

/// Four bits of group 71; the fourth is stored the other way round.
int viewMode(Bits &data)
{
    const int low = (data.bit() ? 1 : 0) | (data.bit() ? 2 : 0) | (data.bit() ? 4 : 0);
    return low | (data.bit() ? 0 : 16);
}

void viewport(Decoder &d)
{
    Bits &data = d.in.data;
    const double height = data.bitDouble();
    const double width = data.bitDouble();
    d.real(40, height);
    d.real(41, height != 0.0 ? width / height : 1.0);
    d.add(12, data.rawPoint2());
    d.add(17, data.point3());
    d.add(16, data.point3());
    d.angle(51, data.bitDouble());
    for (int group = 42; group <= 44; ++group)
        d.real(group, data.bitDouble());
    const int mode = viewMode(data);
    if (d.in.facts().since(DrawingVersion::r2000))
        d.integer(281, data.rawChar());
    if (d.in.facts().since(DrawingVersion::r2007)) {
        d.integer(292, data.bit());
        d.integer(282, data.rawChar());
        d.real(141, data.bitDouble());
        d.real(142, data.bitDouble());
        d.color(63, d.in.color());
    }
    d.add(10, data.rawPoint2());
    d.add(11, data.rawPoint2());
    d.integer(71, mode | (data.bit() ? 8 : 0));
    d.integer(72, data.bitShort());
    d.integer(73, data.bit());
    const bool iconIsOn = data.bit();
    d.integer(74, (iconIsOn ? 1 : 0) | (data.bit() ? 2 : 0));
    d.integer(76, data.bit());
    d.add(15, data.rawPoint2());
    d.integer(75, data.bit());
    d.integer(77, data.bit());
    d.integer(78, data.bitShort());
    d.angle(50, data.bitDouble());
    d.add(13, data.rawPoint2());
    d.add(14, data.rawPoint2());
    if (!d.in.facts().since(DrawingVersion::r2000))
        return;
    data.bit();
    d.integer(65, data.bit());
    for (int group = 110; group <= 112; ++group)
        d.add(group, data.point3());
    d.real(146, data.bitDouble());
    d.integer(79, data.bitShort());
    if (d.in.facts().since(DrawingVersion::r2007)) {
        d.integer(60, data.bitShort());
        d.integer(61, data.bitShort());
    }
}

void optionalHandle(Decoder &d, int group)
{
    if (const std::uint64_t named = d.in.reference().handle)
        d.handle(group, named);
}

void viewportHandles(Decoder &d)
{
    d.in.reference();
    if (d.in.facts().since(DrawingVersion::r2007)) {
        for (const int group : {332, 348, 361})
            optionalHandle(d, group);
    }
    if (d.in.facts().since(DrawingVersion::r2000)) {
        optionalHandle(d, 345);
        optionalHandle(d, 346);
    }
}

void view(Decoder &d)
{
    Bits &data = d.in.data;
    d.real(40, data.bitDouble());
    d.real(41, data.bitDouble());
    d.add(10, data.rawPoint2());
    d.add(12, data.point3());
    d.add(11, data.point3());
    d.angle(50, data.bitDouble());
    for (int group = 42; group <= 44; ++group)
        d.real(group, data.bitDouble());
    d.integer(71, viewMode(data));
    if (d.in.facts().since(DrawingVersion::r2000))
        d.integer(281, data.rawChar());
    if (d.in.facts().since(DrawingVersion::r2007)) {
        data.bit();
        data.rawChar();
        data.bitDouble();
        data.bitDouble();
        d.in.color();
    }
    addFlags(d, data.bit() ? 1 : 0);
    bool hasUcs = false;
    if (d.in.facts().since(DrawingVersion::r2000)) {
        hasUcs = data.bit();
        d.integer(72, hasUcs);
        if (hasUcs) {
            for (int group = 110; group <= 112; ++group)
                d.add(group, data.point3());
            d.real(146, data.bitDouble());
            d.integer(79, data.bitShort());
        }
    }
    if (d.in.facts().since(DrawingVersion::r2007))
        d.integer(73, data.bit());
    d.in.reference();
    if (d.in.facts().since(DrawingVersion::r2007)) {
        for (const int group : {332, 348, 361})
            optionalHandle(d, group);
    }
    if (hasUcs) {
        optionalHandle(d, 346);
        optionalHandle(d, 345);
    }
    if (d.in.facts().since(DrawingVersion::r2007))
        optionalHandle(d, 334);
}

void blockRecord(Decoder &d)
{
    const BlockHeader block = readBlockHeader(d.in);
    d.text(2, d.recordName(d.in.handle())); // Numbered, where the file has none of its own.
    if (d.in.facts().since(DrawingVersion::r2000))
        d.handle(340, block.layout);
    constexpr qsizetype kChunk = 127;
    for (qsizetype i = 0; i < block.preview.size(); i += kChunk)
        d.add(310, block.preview.mid(i, kChunk));
    if (d.in.facts().since(DrawingVersion::r2007)) {
        d.integer(70, block.insertUnits);
        d.integer(280, block.isExplodable);
        d.integer(281, block.scaling);
    }
}

// Objects ----------------------------------------------------------------------------------------

void dictionary(Decoder &d)
{
    Bits &data = d.in.data;
    const std::size_t items = d.count(data.bitLong());
    int cloning = 0;
    bool isHardOwner = false;
    if (d.in.version() == DrawingVersion::r14)
        isHardOwner = data.rawChar() != 0;
    if (d.in.facts().since(DrawingVersion::r2000)) {
        cloning = data.bitShort();
        isHardOwner = data.rawChar() != 0;
    }
    if (items > d.in.handles.bitsLeft() / 8) {
        d.in.handles.fail();
        return;
    }
    d.integer(280, isHardOwner);
    if (d.in.facts().since(DrawingVersion::r2000))
        d.integer(281, cloning);
    std::vector<QString> names(items);
    for (QString &name : names)
        name = d.in.text();
    for (const QString &name : names) {
        const HandleRef item = d.in.reference();
        if (item.handle == 0)
            continue;
        d.text(3, name);
        d.handle(item.kind == Reference::hardOwner ? 360 : 350, item.handle);
    }
}

/// The groups of an XRECORD are not bit-coded.
bool xrecordGroup(Decoder &d, Bits &data)
{
    const int code = std::int16_t(data.rawShort());
    if (data.failed())
        return false;
    if (beginsPoint(code)) {
        d.add(code, data.rawPoint3());
        return true;
    }
    switch (groupKind(code)) {
    case GroupKind::text:
        if (d.in.facts().hasTextStream()) {
            const std::size_t length = data.rawShort();
            if (length > data.bitsLeft() / 16)
                return false;
            QString text(qsizetype(length), Qt::Uninitialized);
            for (QChar &unit : text)
                unit = QChar(data.rawShort());
            d.text(code, text);
        } else {
            const std::size_t length = data.rawShort();
            const auto codec = base::TextCodec::fromDwgNumber(data.rawChar());
            const QByteArray bytes = data.bytes(length);
            d.text(code, decodeText({bytes.constData(), std::size_t(bytes.size())},
                                    codec.known() ? codec : d.in.facts().codec));
        }
        break;
    case GroupKind::point:
    case GroupKind::real:
        if (code >= 50 && code <= 58)
            d.angle(code, data.rawDouble());
        else
            d.real(code, data.rawDouble());
        break;
    case GroupKind::integer16:
        d.integer(code, code >= 280 && code <= 289 ? data.rawChar() : std::int16_t(data.rawShort()));
        break;
    case GroupKind::boolean:
        d.integer(code, data.rawChar());
        break;
    case GroupKind::integer32:
        d.integer(code, std::int32_t(data.rawLong()));
        break;
    case GroupKind::integer64: {
        const std::uint64_t low = data.rawLong();
        d.integer(code, std::int64_t(low | std::uint64_t(data.rawLong()) << 32));
        break;
    }
    case GroupKind::handle: {
        const std::uint64_t low = data.rawLong();
        d.handle(code, low | std::uint64_t(data.rawLong()) << 32);
        break;
    }
    case GroupKind::binary:
        d.add(code, data.bytes(data.rawChar()));
        break;
    }
    return !data.failed();
}

void xrecord(Decoder &d)
{
    const std::size_t size = std::size_t(std::max(d.in.data.bitLong(), 0));
    const QByteArray bytes = d.in.data.bytes(size);
    if (d.in.facts().since(DrawingVersion::r2000))
        d.integer(280 + kSubclass, d.in.data.bitShort());
    Bits data(std::string_view(bytes.constData(), std::size_t(bytes.size())));
    while (data.bitsLeft() >= 16 && xrecordGroup(d, data)) {
    }
}

/// A count, and so many handles of one group.
void handles(Decoder &d, std::size_t count, int group)
{
    if (count > d.in.handles.bitsLeft() / 8) {
        d.in.handles.fail();
        return;
    }
    for (std::size_t i = 0; i < count; ++i)
        d.handle(group, d.in.reference().handle);
}

void group(Decoder &d)
{
    d.text(300, d.in.text());
    d.integer(70, d.in.data.bitShort());
    d.integer(71, d.in.data.bitShort());
    handles(d, std::size_t(std::max(d.in.data.bitLong(), 0)), 340);
}

void mlineStyle(Decoder &d)
{
    Bits &data = d.in.data;
    d.text(2, d.in.text());
    d.text(3, d.in.text());
    const int stored = data.bitShort();
    static constexpr std::array<std::pair<int, int>, 8> kFlags{
        {{1, 2}, {2, 1}, {16, 16}, {32, 64}, {64, 32}, {256, 256}, {512, 1024}, {1024, 512}}};
    int flags = 0;
    for (const auto &[inFile, inDxf] : kFlags)
        flags |= stored & inFile ? inDxf : 0;
    d.integer(70, flags);
    d.color(62, d.in.color());
    d.angle(51, data.bitDouble());
    d.angle(52, data.bitDouble());
    const std::size_t lines = data.rawChar();
    d.integer(71, std::int64_t(lines));
    for (std::size_t i = 0; i < lines && !data.failed(); ++i) {
        d.real(49 + kSubclass, data.bitDouble());
        d.color(62 + kSubclass, d.in.color());
        if (d.in.facts().since(DrawingVersion::r2018)) {
            d.text(6 + kSubclass, d.recordName(d.in.reference().handle));
            continue;
        }
        // By layer and by block have numbers above all others.
        const int index = data.bitShort();
        d.text(6 + kSubclass, index == 32767   ? QStringLiteral("BYLAYER")
                              : index == 32766 ? QStringLiteral("BYBLOCK")
                                               : QString());
    }
}

void sortTable(Decoder &d)
{
    const std::size_t entries = std::size_t(std::max(d.in.data.bitLong(), 0));
    if (entries > d.in.data.bitsLeft() / 8) {
        d.in.data.fail();
        return;
    }
    std::vector<std::uint64_t> sort(entries);
    for (std::uint64_t &handle : sort)
        handle = d.in.data.handle(d.in.handle()).handle;
    d.handle(330, d.in.reference().handle);
    for (const std::uint64_t handle : sort) {
        d.handle(331, d.in.reference().handle);
        d.handle(5, handle);
    }
}

void layoutViewports(Decoder &d)
{
    const std::size_t viewports = d.in.facts().since(DrawingVersion::r2004) ? d.in.data.rawLong() : 0;
    if (d.in.facts().since(DrawingVersion::r2004))
        d.text(6, d.recordName(d.in.reference().handle));
    if (d.in.facts().since(DrawingVersion::r2007))
        d.in.reference();
    d.handle(330 + kSubclass, d.in.reference().handle);
    for (const int group : {331, 346, 345}) {
        if (const std::uint64_t named = d.in.reference().handle)
            d.handle(group + kSubclass, named);
    }
    static_cast<void>(viewports); // They are found through their sheet.
}

void plotView(Decoder &d)
{
    if (d.in.facts().since(DrawingVersion::r2004))
        d.text(6, d.recordName(d.in.reference().handle));
}

void spatialFilter(Decoder &d)
{
    Bits &data = d.in.data;
    const std::size_t points = d.count(data.bitShort(), 128);
    d.integer(70, std::int64_t(points));
    for (std::size_t i = 0; i < points; ++i)
        d.add(10, data.rawPoint2());
    d.add(210, data.point3());
    d.add(11, data.point3());
    d.integer(71, data.bitShort());
    for (const auto &[flag, distance] : {std::pair{72, 40}, std::pair{73, 41}}) {
        const int isOn = data.bitShort();
        d.integer(flag, isOn);
        if (isOn == 1)
            d.real(distance, data.bitDouble());
    }
    for (int i = 0; i < 24; ++i)
        d.real(40, data.bitDouble());
}

void bookColor(Decoder &d)
{
    const ObjectReader::Color color = d.in.color();
    d.integer(62, color.rgb ? nearestColorIndex(*color.rgb) : color.index);
    if (color.rgb)
        d.integer(420, *color.rgb);
    d.text(430, color.book + u'$' + color.name);
}

void idBuffer(Decoder &d)
{
    d.in.data.rawChar();
    handles(d, std::size_t(std::max(d.in.data.bitLong(), 0)), 330);
}

} // namespace

Special findObjectSpecial(std::string_view name)
{
    static constexpr struct {
        std::string_view name;
        Special read;
    } kSpecials[] = {
        {"recordHead", recordHead},
        {"layer", layer},
        {"style", style},
        {"linetype", linetype},
        {"viewportRecord", viewport},
        {"viewportHandles", viewportHandles},
        {"view", view},
        {"blockRecord", blockRecord},
        {"dictionary", dictionary},
        {"xrecord", xrecord},
        {"group", group},
        {"mlineStyle", mlineStyle},
        {"sortTable", sortTable},
        {"layoutViewports", layoutViewports},
        {"plotView", plotView},
        {"spatialFilter", spatialFilter},
        {"bookColor", bookColor},
        {"idBuffer", idBuffer},
    };
    const auto *const known =
        std::ranges::find_if(kSpecials, [name](const auto &row) { return row.name == name; });
    return known == std::end(kSpecials) ? nullptr : known->read;
}

} // namespace dwg
