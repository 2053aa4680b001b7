#include "host/formats/dwg/dwgencoding.h"

#include "host/base/assert.h"
#include "host/base/host_text.h"
#include "host/formats/dwg/dwgsection.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace dwg
{

// The old record ---------------------------------------------------------------------------------

/// All handles of the record, in order. What fills up its last byte is none.
static std::vector<StoredHandle> storedHandles(const ObjectReader &reader)
{
    std::vector<StoredHandle> handles;
    Bits at = reader.dataFrom(reader.handlesBegin());
    while (at.position() + 8 <= reader.handlesEnd()) {
        Bits meant = at;
        StoredHandle next;
        next.code = at.rawChar();
        next.bytes = next.code & 0xF;
        next.code >>= 4;
        if (next.bytes > 8 || at.position() + std::size_t(next.bytes) * 8 > reader.handlesEnd())
            break;
        for (int i = 0; i < next.bytes; ++i)
            next.stored = next.stored << 8 | at.rawChar();
        next.meant = meant.handle(reader.handle());
        next.end = at.position();
        handles.push_back(next);
    }
    return handles;
}

OldRecord::OldRecord(const FileFacts &facts, const Neighbours &neighbours, const ObjectPlace &place)
    : reader(facts, place.record)
{
    m_isThere = !place.record.empty() && reader.good();
    if (!m_isThere)
        return;
    const ResbufList shown = decodeObject(facts, neighbours, place);
    common = reader.readCommon(place.isEntity);
    m_isThere = reader.good();
    appendHead(reader, common, neighbours, place, head);
    const auto ownBegin = shown.begin() + std::ptrdiff_t(std::min(head.size(), shown.size()));
    reader.kept = &kept;
    appendExtendedData(reader, common, neighbours, extended);
    own.assign(ownBegin,
               shown.end() - std::ptrdiff_t(std::min(extended.size(), std::size_t(shown.end() - ownBegin))));

    Bits at = reader.dataFrom(common.extendedBegin);
    extendedEnd = at.position();
    while (const std::size_t size = std::uint16_t(at.bitShort())) {
        at.handle(0);
        at.skip(size * 8);
        extendedEnd = at.position();
    }
    ownData = reader.data.position();
    handles = storedHandles(reader);
    const std::size_t ownHandles = reader.handles.position();
    firstOwnHandle = std::size_t(
        std::ranges::count_if(handles, [ownHandles](const auto &each) { return each.end <= ownHandles; }));
    if (!handles.empty() && handles.back().end < reader.handlesEnd())
        isPaddedWithOnes = reader.dataFrom(handles.back().end).bit();

    if (!place.kind)
        return;
    Decoder decoder(reader, common, neighbours);
    decoder.owningBlock = place.owner;
    readFields(*place.kind, decoder);
    reader.kept = nullptr;
    tagged = std::move(decoder.out);
    parts = std::move(decoder.parts);
}

QString OldRecord::shownName() const
{
    const resbuf *const name = findGroup(own, 2);
    return name ? name->text() : QString();
}

// Groups -----------------------------------------------------------------------------------------

Reference referenceOf(int group)
{
    const int code = group % kSubclass;
    if ((code >= 340 && code <= 349) || (code >= 390 && code <= 399) || (code >= 480 && code <= 481))
        return Reference::hardPointer;
    if (code >= 350 && code <= 359)
        return Reference::softOwner;
    return code >= 360 && code <= 369 ? Reference::hardOwner : Reference::softPointer;
}

Encoder::Encoder(const FileFacts &fileFacts, const Names &allNames, const EncodePlace &where,
                 OldRecord &oldRecord)
    : facts(fileFacts), names(allNames), place(where), old(oldRecord)
{
}

void Encoder::fail(const QString &sentence)
{
    if (m_failure.isEmpty())
        m_failure = sentence;
}

/// The row's place for a group: at or behind `from`, else the first in the row, else the one for all that are
/// left.
static const Group *placeOf(const Kind &kind, std::size_t from, int code)
{
    if (from < kind.groups.size() &&
        std::ranges::find(kind.groups[from].also, code) != kind.groups[from].also.end())
        return &kind.groups[from];
    const auto matches = [code](const Group &group) {
        return group.marker.isEmpty() && group.code != 0 && group.code % kSubclass == code;
    };
    const auto begin = kind.groups.begin();
    const auto ahead = std::find_if(begin + std::ptrdiff_t(from), kind.groups.end(), [&](const Group &group) {
        return matches(group) || !group.marker.isEmpty();
    });
    if (ahead != kind.groups.end() && ahead->marker.isEmpty())
        return &*ahead;
    const auto any = std::ranges::find_if(kind.groups, matches);
    if (any != kind.groups.end())
        return &*any;
    const auto star = std::ranges::find_if(
        kind.groups, [](const Group &group) { return group.marker.isEmpty() && group.code == 0; });
    return star == kind.groups.end() ? nullptr : &*star;
}

void Encoder::setGroups(const Kind &kind, const ResbufList &groups)
{
    std::size_t at = 0;
    int embedded = 0; // Groups of an embedded object (101) are those of a further subclass.
    for (const resbuf &group : groups) {
        if (group.restype == 100) {
            const auto marker = std::find_if(kind.groups.begin() + std::ptrdiff_t(at), kind.groups.end(),
                                             [&](const Group &each) { return each.marker == group.text(); });
            if (marker != kind.groups.end())
                at = std::size_t(marker - kind.groups.begin()) + 1;
            continue;
        }
        own.push_back(group);
        if (group.restype == 101)
            embedded = kSubclass;
        if (embedded != 0) {
            m_groups[group.restype + embedded].push_back(group);
            continue;
        }
        const Group *const found = placeOf(kind, at, group.restype);
        if (!found) {
            fail(Host::tr("group %1 has no place in a DWG file").arg(group.restype));
        } else {
            (found->code == 0 ? rest : m_groups[found->code]).push_back(group);
            at = std::max(at, std::size_t(found - kind.groups.data()));
        }
    }
    fillGaps(kind);
    for (auto &[code, values] : m_groups)
        std::ranges::reverse(values);
}

/// What DXF leaves out because of its value.
void Encoder::fillGaps(const Kind &kind)
{
    for (const Group &group : kind.groups) {
        if (!group.hasDefault || m_groups.contains(group.code))
            continue;
        std::vector<resbuf> &values = m_groups[group.code];
        for (const resbuf &read : old.tagged) {
            if (read.restype == group.code && isAbsent(group, read.resval))
                values.push_back(read);
        }
        if (values.empty())
            values.emplace_back(group.code, group.absent);
    }
}

std::size_t Encoder::left(int group) const
{
    const auto found = m_groups.find(group);
    return found == m_groups.end() ? 0 : found->second.size();
}

resbuf Encoder::take(int group)
{
    const auto found = m_groups.find(group);
    if (found == m_groups.end() || found->second.empty())
        return {group, {}};
    resbuf next = std::move(found->second.back());
    found->second.pop_back();
    return next;
}

const resbuf &Encoder::peek(int group) const
{
    static const resbuf kNone;
    const auto found = m_groups.find(group);
    return found == m_groups.end() || found->second.empty() ? kNone : found->second.back();
}

AcGePoint2d Encoder::plane(int group)
{
    const AcGePoint3d value = point(group);
    return {value.x, value.y};
}

const resbuf::Value *Encoder::hidden(int number) const
{
    const auto found = std::ranges::find(old.kept.hidden, number, &std::pair<int, resbuf::Value>::first);
    return found == old.kept.hidden.end() ? nullptr : &found->second;
}

template <class Value>
static Value valueOr(const resbuf::Value *known, Value usual)
{
    const Value *const value = known ? std::get_if<Value>(known) : nullptr;
    return value ? *value : usual;
}

std::int64_t Encoder::hiddenInteger(int number, std::int64_t usual) const
{
    return valueOr(hidden(number), usual);
}

double Encoder::hiddenReal(int number, double usual) const
{
    return valueOr(hidden(number), usual);
}

AcGePoint3d Encoder::hiddenPoint(int number) const
{
    return valueOr(hidden(number), AcGePoint3d());
}

QByteArray Encoder::hiddenBytes(int number) const
{
    return valueOr(hidden(number), QByteArray());
}

// Values -----------------------------------------------------------------------------------------

void Encoder::putText(const QString &text)
{
    constexpr qsizetype kLongest = 0xFFFF;
    QByteArray bytes;
    if (const QByteArray *const stored = old.kept.texts.find(text))
        bytes = *stored;
    else
        bytes = storedText(facts, text);
    const qsizetype length = facts.hasTextStream() ? bytes.size() / 2 : bytes.size();
    if (length > kLongest)
        return fail(Host::tr("a text of %1 characters is too long").arg(text.size()));
    BitWriter &out = facts.hasTextStream() ? texts : data;
    out.bitShort(int(length));
    out.bytes(bytes);
}

/// Degrees and radians do not turn into each other without loss.
double Encoder::radians(double degrees)
{
    if (const double *const stored = old.kept.angles.find(degrees))
        return *stored;
    return degrees * std::numbers::pi / 180.0;
}

void Encoder::putColor(Color color)
{
    if (!since(DrawingVersion::r2004)) {
        data.bitShort(color.rgb ? nearestColorIndex(*color.rgb) : color.index);
        return;
    }
    const Kept::StoredColor *const stored = old.kept.colors.find(color);
    const std::uint32_t value = color.rgb            ? 0xC2000000 | *color.rgb
                                : color.index == 256 ? 0xC0000000
                                : color.index == 0   ? 0xC1000000
                                                     : 0xC3000000 | std::uint32_t(color.index);
    const unsigned named =
        stored ? stored->names : (color.name.isEmpty() ? 0 : 1) | (color.book.isEmpty() ? 0 : 2);
    data.bitShort(stored ? stored->index : 0);
    data.bitLong(stored ? stored->value : std::int32_t(value));
    data.rawChar(named);
    if (named & 1)
        putText(color.name);
    if (named & 2)
        putText(color.book);
}

void Encoder::putColorGroups(int group)
{
    const int trueColor = 420 + group % kSubclass - 62 + group / kSubclass * kSubclass;
    Color color;
    color.index = small(group);
    if (group % kSubclass >= 62 && group % kSubclass <= 69 && left(trueColor) != 0) {
        color.rgb = std::uint32_t(integer(trueColor));
        color.index = 0;
    }
    putColor(color);
}

void Encoder::putHandle(Reference kind, std::uint64_t handle)
{
    const auto next = old.handles.begin() + std::ptrdiff_t(std::min(m_nextHandle, old.handles.size()));
    auto known = next;
    if (next == old.handles.end() || next->meant.handle != handle) {
        known = std::find_if(next, old.handles.end(), [&](const StoredHandle &each) {
            return handle != 0 && each.meant.handle == handle && each.meant.kind == kind;
        });
    }
    if (known == old.handles.end())
        return handles.handle(int(kind), handle);
    m_nextHandle = std::size_t(known - old.handles.begin()) + 1;
    handles.bits(unsigned(known->code), 4);
    handles.bits(unsigned(known->bytes), 4);
    handles.bits(known->stored, 8 * known->bytes);
}

void Encoder::putHandleGroup(int group)
{
    putHandle(referenceOf(group), handle(group));
}

void Encoder::putName(SymbolTable table, const QString &name)
{
    const std::uint64_t *const stored = old.kept.names.find(name);
    const std::uint64_t record = stored ? *stored : names.handleOf(table, name);
    if (record == 0 && !name.isEmpty() && !stored)
        fail(Host::tr("the drawing has nothing called \"%1\"").arg(name));
    putHandle(Reference::hardPointer, record);
}

void Encoder::copyRestOfHandles()
{
    while (m_nextHandle < old.handles.size()) {
        const HandleRef next = old.handles[m_nextHandle].meant;
        putHandle(next.kind, next.handle);
    }
}

// Fields -----------------------------------------------------------------------------------------

static SymbolTable tableOfName(int group)
{
    switch (group % kSubclass) {
    case 2:
        return SymbolTable::block;
    case 3:
        return SymbolTable::dimStyle;
    case 6:
        return SymbolTable::linetype;
    case 7:
        return SymbolTable::textStyle;
    default:
        QUILL_ASSERT(group % kSubclass == 8);
        return SymbolTable::layer;
    }
}

void Encoder::writeField(const Field &field, int at)
{
    using Code = Field::Code;
    resbuf next;
    if (field.code == Code::color)
        return field.group != 0 ? putColorGroups(field.group) : putColor(Color());
    if (field.code == Code::special) {
        if (field.writeSpecial)
            return field.writeSpecial(*this);
        return fail(Host::tr("that part of it can only be read"));
    }
    if (field.group != 0)
        next = take(field.group);
    else if (const resbuf::Value *const known = hidden(at))
        next.resval = *known;
    const AcGePoint3d point = next.point();
    switch (field.code) {
    case Code::b:
        return data.bit(next.integer() != 0);
    case Code::bs:
        return data.bitShort(int(next.integer()));
    case Code::bl:
        return data.bitLong(std::int32_t(next.integer()));
    case Code::rc:
        return data.rawChar(unsigned(next.integer()));
    case Code::rs:
        return data.rawShort(std::uint16_t(next.integer()));
    case Code::rl:
        return data.rawLong(std::uint32_t(next.integer()));
    case Code::bll:
        return data.bitLongLong(std::uint64_t(next.integer()));
    case Code::bd:
        return data.bitDouble(next.real());
    case Code::rd:
        return data.rawDouble(next.real());
    case Code::bt:
        return data.thickness(facts.version, next.real());
    case Code::angle:
        return data.bitDouble(radians(next.real()));
    case Code::text:
        return putText(next.text());
    case Code::p2bd:
        return data.point2({point.x, point.y});
    case Code::p3bd:
        return data.point3(point);
    case Code::p2rd:
        return data.rawPoint2({point.x, point.y});
    case Code::p3rd:
        return data.rawPoint3(point);
    case Code::be:
        return data.extrusion(facts.version, point);
    case Code::colorValue: {
        Color color;
        color.index = int(next.integer());
        return putColor(color);
    }
    case Code::handle:
        return putHandle(field.group != 0 ? referenceOf(field.group) : Reference::hardPointer,
                         next.handle().value);
    case Code::name:
        return putName(tableOfName(field.group), next.text());
    case Code::color:
    case Code::special:
        return;
    }
}

void Encoder::writeFields(const Kind &kind)
{
    const int version = int(facts.version);
    for (std::size_t i = 0; i < kind.fields.size(); ++i) {
        const Field &field = kind.fields[i];
        if (version >= field.since && (field.until == 0 || version < field.until))
            writeField(field, int(i));
    }
}

} // namespace dwg
