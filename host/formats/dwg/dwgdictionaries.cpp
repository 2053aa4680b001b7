// Dictionaries, xrecords, and lists of objects: groups, drawing order, buffers.
#include "host/base/host_text.h"
#include "host/formats/dwg/dwgspecials.h"

#include <algorithm>

namespace dwg
{
namespace
{

using enum DrawingVersion;

enum Hidden : int { kBuffer = kFirstHidden, kTextPage, kEmptyItem = kTextPage + 100000 };

void dictionary(Decoder &d)
{
    Bits &data = d.in.data;
    const std::size_t items = d.count(data.bitLong());
    int cloning = 0;
    bool isHardOwner = false;
    if (d.in.version() == DrawingVersion::r14)
        isHardOwner = data.rawChar() != 0;
    if (d.since(r2000)) {
        cloning = data.bitShort();
        isHardOwner = data.rawChar() != 0;
    }
    if (items > d.in.handles.bitsLeft() / 8) {
        d.in.handles.fail();
        return;
    }
    d.integer(280, isHardOwner);
    if (d.since(r2000))
        d.integer(281, cloning);
    std::vector<QString> names(items);
    for (QString &name : names)
        name = d.in.text();
    for (std::size_t i = 0; i < items; ++i) {
        const QString &name = names[i];
        const HandleRef item = d.in.reference();
        if (item.handle == 0) {
            d.hidden(kEmptyItem + int(i), name);
            continue;
        }
        d.text(3, name);
        d.handle(item.kind == Reference::hardOwner ? 360 : 350, item.handle);
    }
}

/// Names and handles in pairs; a dictionary with a default shows all names first.
void writeDictionary(Encoder &e)
{
    std::vector<resbuf> items, entries;
    for (const resbuf &group : e.own) {
        if (group.restype == 3)
            entries.push_back(group);
        else if (group.restype == 350 || group.restype == 360)
            items.push_back(group);
    }
    if (items.size() != entries.size())
        return e.fail(Host::tr("its names and its objects do not match"));
    for (std::size_t i = 0; i <= items.size(); ++i) {
        if (const resbuf::Value *const empty = e.hidden(kEmptyItem + int(i))) {
            entries.insert(entries.begin() + std::ptrdiff_t(i), resbuf(3, *empty));
            items.insert(items.begin() + std::ptrdiff_t(i), resbuf(350, AcDbHandle()));
        }
    }
    e.data.bitLong(std::int32_t(items.size()));
    e.data.bitShort(e.small(281));
    e.data.rawChar(unsigned(e.integer(280)));
    for (const resbuf &name : entries)
        e.putText(name.text());
    for (const resbuf &item : items)
        e.putHandle(referenceOf(item.restype), item.handle().value);
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
            const unsigned page = data.rawChar();
            const auto texts = std::ranges::count_if(d.out, [](const resbuf &group) {
                return group.restype < kSubclass && groupKind(group.restype) == GroupKind::text;
            });
            d.hidden(kTextPage + int(texts), std::int64_t(page));
            const auto codec = base::TextCodec::fromDwgNumber(std::uint16_t(page));
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
    if (d.since(r2000))
        d.integer(280 + kSubclass, d.in.data.bitShort());
    Bits data(std::string_view(bytes.constData(), std::size_t(bytes.size())));
    while (data.bitsLeft() >= 16 && xrecordGroup(d, data)) {
    }
}

/// In the code page that the old record has there.
bool writeXrecordText(const QString &text, int number, Encoder &e, BitWriter &out)
{
    if (e.facts.hasTextStream()) {
        out.rawShort(std::uint16_t(text.size()));
        for (const QChar unit : text)
            out.rawShort(unit.unicode());
        return text.size() <= 0xFFFF;
    }
    const auto page = std::uint16_t(e.hiddenInteger(kTextPage + number, e.facts.codec.dwgNumber()));
    const auto codec = base::TextCodec::fromDwgNumber(page);
    const QByteArray bytes =
        (codec.known() ? codec : e.facts.codec).encode(text, base::Substitute::unicodeEscape);
    out.rawShort(std::uint16_t(bytes.size()));
    out.rawChar(page);
    out.bytes(bytes);
    return bytes.size() <= 0xFFFF;
}

bool writeXrecordGroup(const resbuf &group, int textNumber, Encoder &e, BitWriter &out)
{
    const int code = group.restype;
    const std::int64_t number = group.integer();
    out.rawShort(std::uint16_t(code));
    if (beginsPoint(code)) {
        out.rawPoint3(group.point());
        return true;
    }
    const auto wide = [&out](std::uint64_t value) {
        out.rawLong(std::uint32_t(value));
        out.rawLong(std::uint32_t(value >> 32));
    };
    switch (groupKind(code)) {
    case GroupKind::text:
        return writeXrecordText(group.text(), textNumber, e, out);
    case GroupKind::point:
    case GroupKind::real:
        out.rawDouble(code >= 50 && code <= 58 ? e.radians(group.real()) : group.real());
        return true;
    case GroupKind::integer16:
        if (code >= 280 && code <= 289)
            out.rawChar(unsigned(number));
        else
            out.rawShort(std::uint16_t(number));
        return true;
    case GroupKind::boolean:
        out.rawChar(unsigned(number));
        return true;
    case GroupKind::integer32:
        out.rawLong(std::uint32_t(number));
        return true;
    case GroupKind::integer64:
        wide(std::uint64_t(number));
        return true;
    case GroupKind::handle:
        wide(group.handle().value);
        return true;
    case GroupKind::binary:
        out.rawChar(unsigned(group.bytes().size()));
        out.bytes(group.bytes());
        return group.bytes().size() <= 0xFF;
    }
    return false;
}

/// What is among the record's handles as well.
ResbufList references(const ResbufList &groups)
{
    ResbufList named;
    std::ranges::copy_if(groups, std::back_inserter(named),
                         [](const resbuf &group) { return group.restype >= 330 && group.restype <= 369; });
    return named;
}

void writeXrecord(Encoder &e)
{
    BitWriter out;
    const bool hasCloning = !e.own.empty() && e.own.front().restype == 280;
    int texts = 0;
    for (std::size_t i = hasCloning ? 1 : 0; i < e.own.size(); ++i) {
        const bool isWritten = writeXrecordGroup(e.own[i], texts, e, out);
        texts += groupKind(e.own[i].restype) == GroupKind::text;
        if (!isWritten)
            return e.fail(Host::tr("group %1 is too long").arg(e.own[i].restype));
    }
    e.data.bitLong(std::int32_t(out.written().size()));
    e.data.bytes(out.written());
    e.data.bitShort(hasCloning ? int(e.own.front().integer()) : 1);
    // Not all that it names need stand there.
    const ResbufList named = references(e.own);
    if (!e.isNew() && named == references(e.old.own))
        return e.copyRestOfHandles();
    for (const resbuf &group : named)
        e.putHandle(referenceOf(group.restype), group.handle().value);
}

// Lists ------------------------------------------------------------------------------------------

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

void writeGroup(Encoder &e)
{
    e.putText(e.text(300));
    e.data.bitShort(e.small(70));
    e.data.bitShort(e.small(71));
    e.data.bitLong(std::int32_t(e.left(340)));
    while (e.left(340) != 0)
        e.putHandleGroup(340);
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

void writeSortTable(Encoder &e)
{
    GroupCursor rest(e.rest);
    const std::uint64_t block = rest.take(330).handle().value;
    std::vector<std::uint64_t> entities, sort;
    while (rest.isAt(331)) {
        entities.push_back(rest.take(331).handle().value);
        sort.push_back(rest.take(5).handle().value);
    }
    if (!rest.atEnd())
        e.fail(Host::tr("its groups contradict each other"));
    e.data.bitLong(std::int32_t(sort.size()));
    for (const std::uint64_t handle : sort)
        e.data.handle(0, handle);
    e.putHandle(Reference::softPointer, block);
    for (const std::uint64_t entity : entities)
        e.putHandle(Reference::softPointer, entity);
}

void idBuffer(Decoder &d)
{
    d.hidden(kBuffer, std::int64_t(d.in.data.rawChar()));
    handles(d, std::size_t(std::max(d.in.data.bitLong(), 0)), 330);
}

void writeIdBuffer(Encoder &e)
{
    e.data.rawChar(unsigned(e.hiddenInteger(kBuffer)));
    e.data.bitLong(std::int32_t(e.left(330)));
    while (e.left(330) != 0)
        e.putHandleGroup(330);
}

} // namespace

std::span<const SpecialRow> dictionarySpecials()
{
    static constexpr SpecialRow kRows[] = {
        {"dictionary", dictionary, writeDictionary},
        {"xrecord", xrecord, writeXrecord},
        {"group", group, writeGroup},
        {"sortTable", sortTable, writeSortTable},
        {"idBuffer", idBuffer, writeIdBuffer},
    };
    return kRows;
}

} // namespace dwg
