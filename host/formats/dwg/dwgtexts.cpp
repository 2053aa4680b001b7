// TEXT, ATTRIB, ATTDEF and MTEXT.
#include "host/base/host_text.h"
#include "host/formats/dwg/dwgspecials.h"

namespace dwg
{
namespace
{

using enum DrawingVersion;

enum Hidden : int {
    kAbsent = kFirstHidden,
    kAlignment,
    kPrompt,
    kUnknown,
    kColumnsVersion,
    kColumnsFlag,
    kColumnsApplication
};

/// What a TEXT has of its own since AC1015: a byte tells what is not the usual value.
void text(Decoder &d)
{
    const bool isOld = !d.since(r2000);
    const unsigned absent = isOld ? 0 : d.in.data.rawChar();
    d.hidden(kAbsent, std::int64_t(absent));
    const auto has = [absent](unsigned bit) { return !(absent & bit); };
    const auto number = [&] { return isOld ? d.in.data.bitDouble() : d.in.data.rawDouble(); };
    const double elevation = has(0x01) ? number() : 0.0;
    const AcGePoint2d insertion = d.in.data.rawPoint2();
    AcGePoint2d alignment;
    if (isOld) {
        alignment = d.in.data.rawPoint2();
    } else if (has(0x02)) {
        alignment.x = d.in.data.bitDoubleWithDefault(insertion.x);
        alignment.y = d.in.data.bitDoubleWithDefault(insertion.y);
    }
    const AcGePoint3d normal = isOld ? d.in.data.point3() : d.in.data.extrusion(d.in.version());
    d.real(39, isOld ? d.in.data.bitDouble() : d.in.data.thickness(d.in.version()));
    d.angle(51, has(0x04) ? number() : 0.0);
    d.angle(50, has(0x08) ? number() : 0.0);
    d.real(40, number());
    d.real(41, has(0x10) ? number() : 1.0);
    d.text(1, d.in.text());
    d.integer(71, has(0x20) ? d.in.data.bitShort() : 0);
    const int horizontal = has(0x40) ? d.in.data.bitShort() : 0;
    const int vertical = has(0x80) ? d.in.data.bitShort() : 0;
    d.integer(72, horizontal);
    d.integer(d.in.type() == kText ? 73 : 74, vertical);
    d.add(10, at(insertion, elevation));
    d.add(210, normal);
    if (horizontal != 0 || vertical != 0)
        d.add(11, at(alignment, elevation));
    else
        d.hidden(kAlignment, at(alignment, elevation));
}

void writeText(Encoder &e)
{
    const AcGePoint3d insertion = e.point(10);
    const AcGePoint3d normal = e.point(210);
    const double thickness = e.real(39);
    const double oblique = e.radians(e.real(51));
    const double rotation = e.radians(e.real(50));
    const double height = e.real(40);
    const double width = e.real(41);
    const int generation = e.small(71);
    const int horizontal = e.small(72);
    const int vertical = e.small(e.place.type == kText ? 73 : 74);
    const bool isAligned = horizontal != 0 || vertical != 0;
    const AcGePoint3d alignment = isAligned ? e.point(11) : e.hiddenPoint(kAlignment);
    // What has its usual value may be absent; the old record says whether it was.
    const bool usual[] = {insertion.z == 0.0, alignment.x == 0.0 && alignment.y == 0.0,
                          oblique == 0.0,     rotation == 0.0,
                          width == 1.0,       generation == 0,
                          horizontal == 0,    vertical == 0};
    unsigned absent = 0;
    for (unsigned bit = 0; bit < std::size(usual); ++bit)
        absent |= usual[bit] ? 1u << bit : 0u;
    absent &= unsigned(e.hiddenInteger(kAbsent, 0xFF));
    const auto has = [absent](unsigned bit) { return !(absent & bit); };
    BitWriter &data = e.data;
    data.rawChar(absent);
    if (has(0x01))
        data.rawDouble(insertion.z);
    data.rawPoint2({insertion.x, insertion.y});
    if (has(0x02)) {
        data.bitDoubleWithDefault(alignment.x, insertion.x);
        data.bitDoubleWithDefault(alignment.y, insertion.y);
    }
    data.extrusion(e.facts.version, normal);
    data.thickness(e.facts.version, thickness);
    if (has(0x04))
        data.rawDouble(oblique);
    if (has(0x08))
        data.rawDouble(rotation);
    data.rawDouble(height);
    if (has(0x10))
        data.rawDouble(width);
    e.putText(e.text(1));
    if (has(0x20))
        data.bitShort(generation);
    if (has(0x40))
        data.bitShort(horizontal);
    if (has(0x80))
        data.bitShort(vertical);
}

/// ATTRIB and ATTDEF behind the text; attributes of several lines are not read.
void attribute(Decoder &d)
{
    if (d.since(r2010))
        d.integer(280 + kSubclass, d.in.data.rawChar());
    if (d.since(r2018) && d.in.data.rawChar() != 1) {
        d.in.data.fail();
        return;
    }
    d.text(2, d.in.text());
    d.integer(73 + kSubclass, d.in.data.bitShort());
    d.integer(70 + kSubclass, d.in.data.rawChar());
    if (d.since(r2007))
        d.integer(280 + 2 * kSubclass, d.in.data.bit());
    if (d.in.type() != kAttdef)
        return;
    if (d.since(r2010))
        d.hidden(kPrompt, std::int64_t(d.in.data.rawChar()));
    d.text(3, d.in.text());
}

void writeAttribute(Encoder &e)
{
    constexpr unsigned kOneLine = 1;
    if (e.since(r2010))
        e.data.rawChar(unsigned(e.integer(280 + kSubclass)));
    if (e.since(r2018))
        e.data.rawChar(kOneLine);
    e.putText(e.text(2));
    e.data.bitShort(e.small(73 + kSubclass));
    e.data.rawChar(unsigned(e.integer(70 + kSubclass)));
    if (e.since(r2007))
        e.data.bit(e.integer(280 + 2 * kSubclass) != 0);
    if (e.place.type != kAttdef)
        return;
    if (e.since(r2010))
        e.data.rawChar(unsigned(e.hiddenInteger(kPrompt)));
    e.putText(e.text(3));
}

/// Long texts stand in pieces of 250 characters, all but the last in group 3.
void pieces(Decoder &d, const QString &text, int lastGroup, int group)
{
    constexpr qsizetype kPiece = 250;
    qsizetype begin = 0;
    for (; text.size() - begin > kPiece; begin += kPiece)
        d.text(group, text.mid(begin, kPiece));
    d.text(lastGroup, text.mid(begin));
}

void backgroundOfMtext(Decoder &d)
{
    if (!d.since(r2004))
        return;
    const int flags = d.in.data.bitLong();
    if (flags == 0)
        return;
    d.integer(90, flags);
    const int frame = d.since(r2018) ? 0x10 : 0;
    if (!(flags & (0x01 | frame)))
        return;
    d.real(45, d.in.data.bitDouble());
    d.color(63, d.in.color());
    d.integer(441, d.in.data.bitLong());
}

void writeBackgroundOfMtext(Encoder &e)
{
    if (!e.since(r2004))
        return;
    const int flags = e.small(90);
    e.data.bitLong(flags);
    const int frame = e.since(r2018) ? 0x10 : 0;
    if (!(flags & (0x01 | frame)))
        return;
    e.data.bitDouble(e.real(45));
    e.putColorGroups(63);
    e.data.bitLong(e.small(441));
}

/// AC1032 files the columns of a text with it.
void columnsOfMtext(Decoder &d)
{
    if (!d.since(r2018) || !d.in.data.bit())
        return;
    d.hidden(kColumnsVersion, std::int64_t(d.in.data.bitShort()));
    d.hidden(kColumnsFlag, std::int64_t(d.in.data.bit()));
    d.hidden(kColumnsApplication, std::int64_t(d.in.reference().handle));
    const int attachment = d.in.data.bitLong();
    const AcGePoint3d direction = d.in.data.point3();
    const AcGePoint3d insertion = d.in.data.point3();
    const double width = d.in.data.bitDouble();
    const double height = d.in.data.bitDouble();
    const double extentsWidth = d.in.data.bitDouble();
    const double extentsHeight = d.in.data.bitDouble();
    const int type = d.in.data.bitShort();
    d.text(101 + kSubclass, QStringLiteral("Embedded Object"));
    d.integer(70 + kSubclass, attachment);
    d.add(10 + kSubclass, direction);
    d.add(11 + kSubclass, insertion);
    d.real(40 + kSubclass, width);
    d.real(41 + kSubclass, height);
    d.real(42 + kSubclass, extentsWidth);
    d.real(43 + kSubclass, extentsHeight);
    d.integer(71 + kSubclass, type);
    if (type == 0)
        return;
    const std::size_t heights = d.count(d.in.data.bitLong());
    const double columnWidth = d.in.data.bitDouble();
    const double gutter = d.in.data.bitDouble();
    const bool isAutomatic = d.in.data.bit();
    const bool isReversed = d.in.data.bit();
    d.integer(72 + kSubclass, std::int64_t(heights));
    d.real(44 + kSubclass, columnWidth);
    d.real(45 + kSubclass, gutter);
    d.integer(73 + kSubclass, isAutomatic);
    d.integer(74 + kSubclass, isReversed);
    if (!isAutomatic && type == 2) {
        for (std::size_t i = 0; i < heights && !d.in.data.failed(); ++i)
            d.real(46 + kSubclass, d.in.data.bitDouble());
    }
}

void writeColumnsOfMtext(Encoder &e)
{
    if (!e.since(r2018))
        return;
    constexpr int kEmbedded = 101 + kSubclass;
    const bool hasColumns = e.left(kEmbedded) != 0;
    e.data.bit(hasColumns);
    if (!hasColumns)
        return;
    constexpr int kVersion = 4;
    e.data.bitShort(int(e.hiddenInteger(kColumnsVersion, kVersion)));
    e.data.bit(e.hiddenInteger(kColumnsFlag, 1) != 0);
    e.putHandle(Reference::hardPointer, std::uint64_t(e.hiddenInteger(kColumnsApplication)));
    e.data.bitLong(e.small(70 + kSubclass));
    e.data.point3(e.point(10 + kSubclass));
    e.data.point3(e.point(11 + kSubclass));
    for (int group = 40; group <= 43; ++group)
        e.data.bitDouble(e.real(group + kSubclass));
    const int type = e.small(71 + kSubclass);
    e.data.bitShort(type);
    if (type == 0)
        return;
    const int heights = e.small(72 + kSubclass);
    const bool isAutomatic = e.integer(73 + kSubclass) != 0;
    e.data.bitLong(heights);
    e.data.bitDouble(e.real(44 + kSubclass));
    e.data.bitDouble(e.real(45 + kSubclass));
    e.data.bit(isAutomatic);
    e.data.bit(e.integer(74 + kSubclass) != 0);
    for (int i = 0; i < heights && !isAutomatic && type == 2; ++i)
        e.data.bitDouble(e.real(46 + kSubclass));
}

void mtext(Decoder &d)
{
    pieces(d, d.in.text(), 1, 3);
    d.text(7, d.recordName(d.in.reference().handle));
    if (d.since(r2000)) {
        d.integer(73, d.in.data.bitShort());
        d.real(44, d.in.data.bitDouble());
        d.hidden(kUnknown, std::int64_t(d.in.data.bit()));
    }
    backgroundOfMtext(d);
    columnsOfMtext(d);
}

void writeMtext(Encoder &e)
{
    QString text;
    while (e.left(3) != 0)
        text += e.text(3);
    e.putText(text + e.text(1));
    e.putName(SymbolTable::textStyle, e.text(7));
    e.data.bitShort(e.small(73));
    e.data.bitDouble(e.real(44));
    e.data.bit(e.hiddenInteger(kUnknown) != 0);
    writeBackgroundOfMtext(e);
    writeColumnsOfMtext(e);
}

} // namespace

std::span<const SpecialRow> textSpecials()
{
    static constexpr SpecialRow kRows[] = {
        {"text", text, writeText},
        {"attribute", attribute, writeAttribute},
        {"mtext", mtext, writeMtext},
    };
    return kRows;
}

} // namespace dwg
