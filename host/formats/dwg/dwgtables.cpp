// Records of symbol tables: layers, linetypes, text styles; styles of multilines and colours of books.
#include "host/base/host_text.h"
#include "host/formats/dwg/dwgspecials.h"

#include <algorithm>
#include <array>

namespace dwg
{

RecordHead readRecordHead(ObjectReader &in)
{
    RecordHead head;
    head.name = in.text();
    if (in.facts().since(DrawingVersion::r2007)) {
        head.stored = in.data.bitShort();
        head.flags = head.stored == 256 ? 16 : 0;
        return head;
    }
    head.isUsed = in.data.bit();
    head.stored = in.data.bitShort();
    head.flags = in.data.bit() ? 16 : 0;
    return head;
}

void writeRecordHead(Encoder &e, const RecordHead &head)
{
    constexpr int kDependent = 16;
    e.putText(head.name);
    if (e.since(DrawingVersion::r2007)) {
        const bool isSame = ((head.stored == 256) ? kDependent : 0) == (head.flags & kDependent);
        e.data.bitShort(isSame ? head.stored : head.flags & kDependent ? 256 : 0);
        return;
    }
    e.data.bit(head.isUsed);
    e.data.bitShort(head.stored);
    e.data.bit(head.flags & kDependent);
}

namespace
{

using enum DrawingVersion;

enum Hidden : int {
    kStored = kFirstHidden,
    kIsUsed,
    kValues,
    kXref,
    kTextArea,
    kDash,
    kLineIndex = kDash + 1000
};

void recordHead(Decoder &d)
{
    const RecordHead head = readRecordHead(d.in);
    d.hidden(kStored, std::int64_t(head.stored));
    d.hidden(kIsUsed, std::int64_t(head.isUsed));
    d.text(2, head.name);
    d.integer(70, head.flags);
}

/// The record's flags are taken by what comes next, too.
void writeRecordHeadOf(Encoder &e)
{
    RecordHead head;
    head.name = e.text(2);
    head.flags = int(e.peek(70).integer());
    head.stored = int(e.hiddenInteger(kStored));
    head.isUsed = e.hiddenInteger(kIsUsed) != 0;
    writeRecordHead(e, head);
}

void layer(Decoder &d)
{
    bool isFrozen = false, isOff = false, isFrozenInNew = false, isLocked = false, isPlotted = true;
    int lineweight = 31;
    const bool isOld = !d.since(DrawingVersion::r2000);
    if (isOld) {
        isFrozen = d.in.data.bit();
        isOff = d.in.data.bit();
        isFrozenInNew = d.in.data.bit();
        isLocked = d.in.data.bit();
    } else {
        const int values = d.in.data.bitShort();
        d.hidden(kValues, std::int64_t(values));
        isFrozen = values & 1;
        isOff = values & 2;
        isFrozenInNew = values & 4;
        isLocked = values & 8;
        isPlotted = values & 16;
        lineweight = (values & 0x3E0) >> 5;
    }
    d.addFlags((isFrozen ? 1 : 0) | (isFrozenInNew ? 2 : 0) | (isLocked ? 4 : 0));
    const Color color = d.in.color();
    const int index = color.rgb ? nearestColorIndex(*color.rgb) : color.index;
    d.integer(62, isOff ? -std::abs(index) : index);
    if (color.rgb)
        d.integer(420, *color.rgb);
    if (!color.name.isEmpty())
        d.text(430, color.book.isEmpty() ? color.name : color.book + u'$' + color.name);
    d.hidden(kXref, std::int64_t(d.in.reference().handle));
    if (!isOld) {
        d.integer(290, isPlotted);
        d.integer(370, lineweightOf(lineweight));
        d.handle(390, d.in.reference().handle);
    }
    if (d.since(DrawingVersion::r2007))
        d.handle(347, d.in.reference().handle);
    d.text(6, d.recordName(d.in.reference().handle));
    if (d.since(DrawingVersion::r2013))
        d.handle(348, d.in.reference().handle);
}

/// A handle that every layer has and a new one takes from layer 0.
void putLayerHandle(Encoder &e, int group)
{
    if (e.left(group) != 0)
        return e.putHandleGroup(group);
    std::uint64_t usual = 0;
    const AcDbObjectId plain = e.names.database.tableRecord(SymbolTable::layer, QStringLiteral("0"));
    if (e.isNew() && !plain.isNull()) {
        const ResbufList groups = e.names.database.fileGroups(*plain.stub());
        if (const resbuf *const known = findGroup(groups, group))
            usual = known->handle().value;
    }
    e.putHandle(Reference::hardPointer, usual);
}

void writeLayer(Encoder &e)
{
    const auto flags = e.integer(70);
    Color color;
    const int index = e.small(62);
    color.index = std::abs(index);
    if (e.left(420) != 0) {
        color.rgb = std::uint32_t(e.integer(420));
        color.index = 0;
    }
    if (e.left(430) != 0) {
        const QString whole = e.text(430);
        const qsizetype dollar = whole.indexOf(u'$');
        color.book = dollar < 0 ? QString() : whole.left(dollar);
        color.name = whole.mid(dollar + 1);
    }
    constexpr int kShown = 0x3FF;
    const bool isPlotted = e.left(290) == 0 || e.integer(290) != 0;
    const int weight = e.left(370) == 0 ? 31 : lineweightIndex(e.small(370));
    e.data.bitShort((int(e.hiddenInteger(kValues)) & ~kShown) | (flags & 1 ? 1 : 0) | (index < 0 ? 2 : 0) |
                    (flags & 2 ? 4 : 0) | (flags & 4 ? 8 : 0) | (isPlotted ? 16 : 0) | weight << 5);
    e.putColor(color);
    e.putHandle(Reference::hardPointer, std::uint64_t(e.hiddenInteger(kXref)));
    putLayerHandle(e, 390);
    if (e.since(r2007))
        putLayerHandle(e, 347);
    e.putName(SymbolTable::linetype, e.left(6) != 0 ? e.text(6) : QStringLiteral("Continuous"));
    if (e.since(r2013))
        putLayerHandle(e, 348);
}

void style(Decoder &d)
{
    const bool isShapeFile = d.in.data.bit();
    const bool isVertical = d.in.data.bit();
    d.addFlags((isShapeFile ? 1 : 0) | (isVertical ? 4 : 0));
}

void writeStyle(Encoder &e)
{
    const auto flags = e.integer(70);
    e.data.bit(flags & 1);
    e.data.bit(flags & 4);
}

// Linetypes --------------------------------------------------------------------------------------

struct Dash {
    double length, x, y, scale, rotation;
    int code, flags;
};

constexpr int kHasText = 2;
constexpr int kHasShape = 4;

/// The texts of a linetype stand together, NUL-terminated; a dash names the place of its own.
QString textOfDash(const FileFacts &facts, const QByteArray &area, int place)
{
    const bool isWide = facts.hasTextStream();
    const qsizetype begin = qsizetype(place) * (isWide ? 2 : 1);
    if (place < 0 || begin >= area.size())
        return {};
    if (!isWide) {
        const QByteArray bytes(
            area.constData() + begin,
            qsizetype(qstrnlen(area.constData() + begin, std::size_t(area.size() - begin))));
        return decodeText({bytes.constData(), std::size_t(bytes.size())}, facts.codec);
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
    d.hidden(kTextArea, texts);
    d.hidden(kXref, std::int64_t(d.in.reference().handle));
    d.integer(73, std::int64_t(dashes.size()));
    int number = kDash;
    for (const Dash &dash : dashes) {
        const std::uint64_t shapes = d.in.reference().handle;
        const resbuf::Value stored[] = {std::int64_t(dash.code), dash.x, dash.y, dash.scale, dash.rotation,
                                        std::int64_t(shapes)};
        for (int i = 0; i < int(std::size(stored)); ++i)
            d.hidden(number + i, stored[i]);
        number += 8;
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
            d.text(9, textOfDash(d.in.facts(), texts, dash.code));
    }
}

struct ShownDash {
    double length = 0.0, x = 0.0, y = 0.0, scale = 1.0, rotation = 0.0;
    int flags = 0, code = 0;
    std::uint64_t shapes = 0;
    QString text;
};

std::vector<ShownDash> shownDashes(Encoder &e)
{
    std::vector<ShownDash> dashes;
    for (const resbuf &group : e.rest) {
        if (group.restype == 49)
            dashes.emplace_back().length = group.real();
        if (dashes.empty())
            continue;
        ShownDash &dash = dashes.back();
        switch (group.restype) {
        case 74:
            dash.flags = int(group.integer());
            break;
        case 75:
            dash.code = int(group.integer());
            break;
        case 340:
            dash.shapes = group.handle().value;
            break;
        case 46:
            dash.scale = group.real();
            break;
        case 50:
            dash.rotation = e.radians(group.real());
            break;
        case 44:
            dash.x = group.real();
            break;
        case 45:
            dash.y = group.real();
            break;
        case 9:
            dash.text = group.text();
            break;
        default:
            break;
        }
    }
    return dashes;
}

/// Puts the texts into the area, one behind the other, when they do not stand there yet.
void settleDashTexts(Encoder &e, std::vector<ShownDash> &dashes, QByteArray &area)
{
    bool isSame = true;
    for (std::size_t i = 0; i < dashes.size(); ++i) {
        if (!(dashes[i].flags & kHasText))
            continue;
        dashes[i].code = int(e.hiddenInteger(kDash + int(i) * 8, -1));
        isSame = isSame && textOfDash(e.facts, area, dashes[i].code) == dashes[i].text;
    }
    if (isSame)
        return;
    const qsizetype size = area.size();
    area.clear();
    const bool isWide = e.facts.hasTextStream();
    for (ShownDash &dash : dashes) {
        if (!(dash.flags & kHasText))
            continue;
        dash.code = int(isWide ? area.size() / 2 : area.size());
        area += isWide
                    ? QByteArray(reinterpret_cast<const char *>(dash.text.utf16()), dash.text.size() * 2 + 2)
                    : e.facts.codec.encode(dash.text, base::Substitute::unicodeEscape) + '\0';
    }
    if (area.size() > size)
        e.fail(Host::tr("the texts of the linetype are too long"));
    area.append(size - std::min(size, area.size()), '\0');
}

void writeLinetype(Encoder &e)
{
    BitWriter &data = e.data;
    std::vector<ShownDash> dashes = shownDashes(e);
    const bool hasTexts =
        std::ranges::any_of(dashes, [](const ShownDash &dash) { return dash.flags & kHasText; });
    QByteArray area = e.hiddenBytes(kTextArea);
    const qsizetype size = !e.facts.hasTextStream() ? 256 : hasTexts ? 512 : 0;
    if (area.size() != size)
        area = QByteArray(size, '\0');
    settleDashTexts(e, dashes, area);
    e.putText(e.text(3));
    data.bitDouble(e.real(40));
    data.rawChar(unsigned(e.integer(72)));
    data.rawChar(unsigned(dashes.size()));
    for (std::size_t i = 0; i < dashes.size(); ++i) {
        ShownDash &dash = dashes[i];
        const int number = kDash + int(i) * 8;
        if (!(dash.flags & (kHasText | kHasShape))) {
            dash.code = int(e.hiddenInteger(number));
            dash.x = e.hiddenReal(number + 1);
            dash.y = e.hiddenReal(number + 2);
            dash.scale = e.hiddenReal(number + 3, 1.0);
            dash.rotation = e.hiddenReal(number + 4);
            dash.shapes = std::uint64_t(e.hiddenInteger(number + 5));
        }
        data.bitDouble(dash.length);
        data.bitShort(dash.code);
        data.rawDouble(dash.x);
        data.rawDouble(dash.y);
        data.bitDouble(dash.scale);
        data.bitDouble(dash.rotation);
        data.bitShort(dash.flags);
    }
    data.bytes(area);
    e.putHandle(Reference::hardPointer, std::uint64_t(e.hiddenInteger(kXref)));
    for (const ShownDash &dash : dashes)
        e.putHandle(Reference::hardPointer, dash.shapes);
}

// Multiline styles, colours of books -------------------------------------------------------------

constexpr std::array<std::pair<int, int>, 8> kMlineFlags{
    {{1, 2}, {2, 1}, {16, 16}, {32, 64}, {64, 32}, {256, 256}, {512, 1024}, {1024, 512}}};

void mlineStyle(Decoder &d)
{
    Bits &data = d.in.data;
    d.text(2, d.in.text());
    d.text(3, d.in.text());
    const int stored = data.bitShort();
    int flags = 0;
    for (const auto &[inFile, inDxf] : kMlineFlags)
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
        if (d.since(DrawingVersion::r2018)) {
            d.text(6 + kSubclass, d.recordName(d.in.reference().handle));
            continue;
        }
        // By layer and by block have numbers above all others.
        const int index = data.bitShort();
        d.hidden(kLineIndex + int(i), std::int64_t(index));
        d.text(6 + kSubclass, index == 32767   ? QStringLiteral("BYLAYER")
                              : index == 32766 ? QStringLiteral("BYBLOCK")
                                               : QString());
    }
}

void writeMlineStyle(Encoder &e)
{
    BitWriter &data = e.data;
    e.putText(e.text(2));
    e.putText(e.text(3));
    const auto shown = e.integer(70);
    int flags = 0;
    for (const auto &[inFile, inDxf] : kMlineFlags)
        flags |= shown & inDxf ? inFile : 0;
    data.bitShort(flags);
    e.putColorGroups(62);
    data.bitDouble(e.radians(e.real(51)));
    data.bitDouble(e.radians(e.real(52)));
    data.rawChar(unsigned(e.integer(71)));
    GroupCursor rest(e.rest);
    for (int line = 0; rest.isAt(49); ++line) {
        data.bitDouble(rest.take(49).real());
        Color color;
        color.index = int(rest.take(62).integer());
        if (rest.isAt(420)) {
            color.rgb = std::uint32_t(rest.take(420).integer());
            color.index = 0;
        }
        e.putColor(color);
        const QString linetype = rest.take(6).text();
        if (e.since(r2018))
            e.putName(SymbolTable::linetype, linetype);
        else
            data.bitShort(linetype == u"BYLAYER"   ? 32767
                          : linetype == u"BYBLOCK" ? 32766
                                                   : int(e.hiddenInteger(kLineIndex + line)));
    }
}

void bookColor(Decoder &d)
{
    const Color color = d.in.color();
    d.integer(62, color.rgb ? nearestColorIndex(*color.rgb) : color.index);
    if (color.rgb)
        d.integer(420, *color.rgb);
    d.text(430, color.book + u'$' + color.name);
}

} // namespace

std::span<const SpecialRow> tableSpecials()
{
    static constexpr SpecialRow kRows[] = {
        {"recordHead", recordHead, writeRecordHeadOf},
        {"layer", layer, writeLayer},
        {"style", style, writeStyle},
        {"linetype", linetype, writeLinetype},
        {"mlineStyle", mlineStyle, writeMlineStyle},
        {"bookColor", bookColor, nullptr},
    };
    return kRows;
}

} // namespace dwg
