// Views: viewports of sheets and of model space, named views, layouts.
#include "host/formats/dwg/dwgspecials.h"

#include <algorithm>

namespace dwg
{
namespace
{

using enum DrawingVersion;

// Behind those of the head of a record.
enum Hidden : int { kStatus = kFirstHidden + 100, kXref, kFlag, kVisual, kViewports };

void viewport(Decoder &d)
{
    Bits &data = d.in.data;
    d.add(10, data.point3());
    d.real(40, data.bitDouble());
    d.real(41, data.bitDouble());
    d.integer(68, 0);
    d.integer(69, 0);
    if (!d.since(r2000)) {
        d.in.reference();
        return;
    }
    d.add(17, data.point3());
    d.add(16, data.point3());
    d.angle(51, data.bitDouble());
    d.real(45, data.bitDouble());
    d.real(42, data.bitDouble());
    d.real(43, data.bitDouble());
    d.real(44, data.bitDouble());
    d.angle(50, data.bitDouble());
    for (int group = 12; group <= 15; ++group)
        d.add(group, data.rawPoint2());
    d.integer(72, data.bitShort());
    if (d.since(r2007))
        d.integer(61, data.bitShort());
    const std::size_t frozen = std::size_t(std::max(data.bitLong(), 0));
    const int status = data.bitLong();
    d.integer(90, status);
    d.text(1, d.in.text());
    d.integer(281, data.rawChar());
    d.integer(74, data.bit());
    d.integer(71, data.bit());
    for (int group = 110; group <= 112; ++group)
        d.add(group, data.point3());
    d.real(146, data.bitDouble());
    d.integer(79, data.bitShort());
    if (d.since(r2004))
        d.integer(170, data.bitShort());
    if (d.since(r2007)) {
        d.integer(292, data.bit());
        d.integer(282, data.rawChar());
        d.real(141, data.bitDouble());
        d.real(142, data.bitDouble());
        d.color(63, d.in.color());
    }
    if (frozen > d.in.handles.bitsLeft() / 8) {
        d.in.handles.fail();
        return;
    }
    const int frozenGroup = d.since(r2004) ? 331 : 341;
    for (std::size_t i = 0; i < frozen; ++i)
        d.handle(frozenGroup, d.in.reference().handle);
    d.optionalHandle(340);
    if (!d.since(r2004))
        d.hidden(kXref, std::int64_t(d.in.reference().handle));
    d.optionalHandle(345);
    d.optionalHandle(346);
    if (d.since(r2007)) {
        for (const int group : {332, 348, 333, 361})
            d.optionalHandle(group);
    }
    // DXF says by numbers which one it is and whether it is on; the file has a bit for that.
    constexpr int kOff = 0x20000;
    const auto number = d.neighbours.viewportNumbers.find(d.in.handle());
    const std::int64_t id = number == d.neighbours.viewportNumbers.end() ? 0 : number->second;
    std::ranges::find(d.out, 68, &resbuf::restype)->assign(status & kOff ? std::int64_t(0) : id);
    std::ranges::find(d.out, 69, &resbuf::restype)->assign(id);
}

void writeViewport(Encoder &e)
{
    BitWriter &data = e.data;
    data.point3(e.point(10));
    data.bitDouble(e.real(40));
    data.bitDouble(e.real(41));
    data.point3(e.point(17));
    data.point3(e.point(16));
    data.bitDouble(e.radians(e.real(51)));
    data.bitDouble(e.real(45));
    for (int group = 42; group <= 44; ++group)
        data.bitDouble(e.real(group));
    data.bitDouble(e.radians(e.real(50)));
    for (int group = 12; group <= 15; ++group)
        data.rawPoint2(e.plane(group));
    data.bitShort(e.small(72));
    if (e.since(r2007))
        data.bitShort(e.small(61));
    const int frozenGroup = e.since(r2004) ? 331 : 341;
    data.bitLong(std::int32_t(e.left(frozenGroup)));
    data.bitLong(e.small(90));
    e.putText(e.text(1));
    data.rawChar(unsigned(e.integer(281)));
    data.bit(e.integer(74) != 0);
    data.bit(e.integer(71) != 0);
    for (int group = 110; group <= 112; ++group)
        data.point3(e.point(group));
    data.bitDouble(e.real(146));
    data.bitShort(e.small(79));
    if (e.since(r2004))
        data.bitShort(e.small(170));
    if (e.since(r2007)) {
        data.bit(e.integer(292) != 0);
        data.rawChar(unsigned(e.integer(282)));
        data.bitDouble(e.real(141));
        data.bitDouble(e.real(142));
        e.putColorGroups(63);
    }
    while (e.left(frozenGroup) != 0)
        e.putHandleGroup(frozenGroup);
    e.putHandleGroup(340);
    if (!e.since(r2004))
        e.putHandle(Reference::hardPointer, std::uint64_t(e.hiddenInteger(kXref)));
    e.putHandleGroup(345);
    e.putHandleGroup(346);
    if (e.since(r2007)) {
        for (const int group : {332, 348, 333, 361})
            e.putHandleGroup(group);
    }
}

// Records ----------------------------------------------------------------------------------------

/// Four bits of group 71; the fourth is stored the other way round.
int viewMode(Bits &data)
{
    const int low = (data.bit() ? 1 : 0) | (data.bit() ? 2 : 0) | (data.bit() ? 4 : 0);
    return low | (data.bit() ? 0 : 16);
}

void writeViewMode(std::int64_t mode, BitWriter &data)
{
    data.bit(mode & 1);
    data.bit(mode & 2);
    data.bit(mode & 4);
    data.bit(!(mode & 16));
}

void viewportRecord(Decoder &d)
{
    Bits &data = d.in.data;
    const double height = data.bitDouble();
    const double width = data.bitDouble();
    d.real(40, height);
    d.real(41, height != 0.0 ? width / height : 1.0);
    d.hidden(kFlag, height != 0.0 ? width / height : 1.0);
    d.hidden(kVisual, width);
    d.add(12, data.rawPoint2());
    d.add(17, data.point3());
    d.add(16, data.point3());
    d.angle(51, data.bitDouble());
    for (int group = 42; group <= 44; ++group)
        d.real(group, data.bitDouble());
    const int mode = viewMode(data);
    if (d.since(r2000))
        d.integer(281, data.rawChar());
    if (d.since(r2007)) {
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
    if (!d.since(r2000))
        return;
    d.hidden(kStatus, std::int64_t(data.bit()));
    d.integer(65, data.bit());
    for (int group = 110; group <= 112; ++group)
        d.add(group, data.point3());
    d.real(146, data.bitDouble());
    d.integer(79, data.bitShort());
    if (d.since(r2007)) {
        d.integer(60, data.bitShort());
        d.integer(61, data.bitShort());
    }
}

void writeViewportRecord(Encoder &e)
{
    BitWriter &data = e.data;
    const double height = e.real(40);
    const double ratio = e.real(41);
    data.bitDouble(height);
    data.bitDouble(ratio == e.hiddenReal(kFlag, -1.0) ? e.hiddenReal(kVisual) : ratio * height);
    data.rawPoint2(e.plane(12));
    data.point3(e.point(17));
    data.point3(e.point(16));
    data.bitDouble(e.radians(e.real(51)));
    for (int group = 42; group <= 44; ++group)
        data.bitDouble(e.real(group));
    const std::int64_t mode = e.integer(71);
    writeViewMode(mode, data);
    data.rawChar(unsigned(e.integer(281)));
    if (e.since(r2007)) {
        data.bit(e.integer(292) != 0);
        data.rawChar(unsigned(e.integer(282)));
        data.bitDouble(e.real(141));
        data.bitDouble(e.real(142));
        e.putColorGroups(63);
    }
    data.rawPoint2(e.plane(10));
    data.rawPoint2(e.plane(11));
    data.bit(mode & 8);
    data.bitShort(e.small(72));
    data.bit(e.integer(73) != 0);
    const std::int64_t icon = e.integer(74);
    data.bit(icon & 1);
    data.bit(icon & 2);
    data.bit(e.integer(76) != 0);
    data.rawPoint2(e.plane(15));
    data.bit(e.integer(75) != 0);
    data.bit(e.integer(77) != 0);
    data.bitShort(e.small(78));
    data.bitDouble(e.radians(e.real(50)));
    data.rawPoint2(e.plane(13));
    data.rawPoint2(e.plane(14));
    data.bit(e.hiddenInteger(kStatus) != 0);
    data.bit(e.integer(65) != 0);
    for (int group = 110; group <= 112; ++group)
        data.point3(e.point(group));
    data.bitDouble(e.real(146));
    data.bitShort(e.small(79));
    if (e.since(r2007)) {
        data.bitShort(e.small(60));
        data.bitShort(e.small(61));
    }
}

void viewportHandles(Decoder &d)
{
    d.hidden(kXref, std::int64_t(d.in.reference().handle));
    if (d.since(r2007)) {
        for (const int group : {332, 348, 361})
            d.optionalHandle(group);
    }
    if (d.since(r2000)) {
        d.optionalHandle(345);
        d.optionalHandle(346);
    }
}

void writeViewportHandles(Encoder &e)
{
    e.putHandle(Reference::hardPointer, std::uint64_t(e.hiddenInteger(kXref)));
    if (e.since(r2007)) {
        for (const int group : {332, 348, 361})
            e.putHandleGroup(group);
    }
    e.putHandleGroup(345);
    e.putHandleGroup(346);
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
    if (d.since(r2000))
        d.integer(281, data.rawChar());
    if (d.since(r2007)) {
        d.hidden(kVisual, std::int64_t(data.bit()));
        d.hidden(kVisual + 10, std::int64_t(data.rawChar()));
        d.hidden(kVisual + 11, data.bitDouble());
        d.hidden(kVisual + 12, data.bitDouble());
        const Color ambient = d.in.color();
        d.hidden(kVisual + 13, std::int64_t(ambient.index));
        if (ambient.rgb)
            d.hidden(kVisual + 14, std::int64_t(*ambient.rgb));
    }
    d.addFlags(data.bit() ? 1 : 0);
    bool hasUcs = false;
    if (d.since(r2000)) {
        hasUcs = data.bit();
        d.integer(72, hasUcs);
        if (hasUcs) {
            for (int group = 110; group <= 112; ++group)
                d.add(group, data.point3());
            d.real(146, data.bitDouble());
            d.integer(79, data.bitShort());
        }
    }
    if (d.since(r2007))
        d.integer(73, data.bit());
    d.hidden(kXref, std::int64_t(d.in.reference().handle));
    if (d.since(r2007)) {
        for (const int group : {332, 348, 361})
            d.optionalHandle(group);
    }
    if (hasUcs) {
        d.optionalHandle(346);
        d.optionalHandle(345);
    }
    if (d.since(r2007))
        d.optionalHandle(334);
}

void writeView(Encoder &e)
{
    BitWriter &data = e.data;
    data.bitDouble(e.real(40));
    data.bitDouble(e.real(41));
    data.rawPoint2(e.plane(10));
    data.point3(e.point(12));
    data.point3(e.point(11));
    data.bitDouble(e.radians(e.real(50)));
    for (int group = 42; group <= 44; ++group)
        data.bitDouble(e.real(group));
    writeViewMode(e.integer(71), data);
    data.rawChar(unsigned(e.integer(281)));
    if (e.since(r2007)) {
        data.bit(e.hiddenInteger(kVisual, 1) != 0);
        data.rawChar(unsigned(e.hiddenInteger(kVisual + 10, 1)));
        data.bitDouble(e.hiddenReal(kVisual + 11));
        data.bitDouble(e.hiddenReal(kVisual + 12));
        Color color;
        color.index = int(e.hiddenInteger(kVisual + 13, 250));
        if (e.hidden(kVisual + 14))
            color.rgb = std::uint32_t(e.hiddenInteger(kVisual + 14));
        e.putColor(color);
    }
    data.bit(e.integer(70) & 1);
    const bool hasUcs = e.integer(72) != 0;
    data.bit(hasUcs);
    if (hasUcs) {
        for (int group = 110; group <= 112; ++group)
            data.point3(e.point(group));
        data.bitDouble(e.real(146));
        data.bitShort(e.small(79));
    }
    if (e.since(r2007))
        data.bit(e.integer(73) != 0);
    e.putHandle(Reference::hardPointer, std::uint64_t(e.hiddenInteger(kXref)));
    if (e.since(r2007)) {
        for (const int group : {332, 348, 361})
            e.putHandleGroup(group);
    }
    if (hasUcs) {
        e.putHandleGroup(346);
        e.putHandleGroup(345);
    }
    if (e.since(r2007))
        e.putHandleGroup(334);
}

// Layouts ----------------------------------------------------------------------------------------

void layoutViewports(Decoder &d)
{
    const int viewports = d.since(r2004) ? d.in.data.bitLong() : 0;
    if (d.since(r2004))
        d.text(6, d.recordName(d.in.reference().handle));
    if (d.since(r2007))
        d.hidden(kVisual, std::int64_t(d.in.reference().handle));
    d.handle(330 + kSubclass, d.in.reference().handle);
    for (const int group : {331, 346, 345}) {
        if (const std::uint64_t named = d.in.reference().handle)
            d.handle(group + kSubclass, named);
    }
    d.hidden(kViewports, std::int64_t(viewports)); // They are found through their sheet.
}

void writeLayoutViewports(Encoder &e)
{
    if (e.since(r2004)) {
        e.data.bitLong(std::int32_t(e.hiddenInteger(kViewports)));
        e.putName(SymbolTable::view, e.text(6));
    }
    if (e.since(r2007))
        e.putHandle(Reference::hardPointer, std::uint64_t(e.hiddenInteger(kVisual)));
    e.putHandleGroup(330 + kSubclass);
    for (const int group : {331, 346, 345})
        e.putHandleGroup(group + kSubclass);
    e.copyRestOfHandles();
}

void plotView(Decoder &d)
{
    if (d.since(r2004))
        d.text(6, d.recordName(d.in.reference().handle));
}

void writePlotView(Encoder &e)
{
    if (e.since(r2004))
        e.putName(SymbolTable::view, e.text(6));
}

} // namespace

std::span<const SpecialRow> viewSpecials()
{
    static constexpr SpecialRow kRows[] = {
        {"viewport", viewport, writeViewport},
        {"viewportRecord", viewportRecord, writeViewportRecord},
        {"viewportHandles", viewportHandles, writeViewportHandles},
        {"view", view, writeView},
        {"layoutViewports", layoutViewports, writeLayoutViewports},
        {"plotView", plotView, writePlotView},
    };
    return kRows;
}

} // namespace dwg
