// Blocks: their headers, where they begin, and the INSERTs that show them with their attributes.
#include "host/base/host_text.h"
#include "host/formats/dwg/dwgspecials.h"

#include <algorithm>

namespace dwg
{

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
    block.head.xref = next();
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
    if (in.facts().since(DrawingVersion::r2000)) {
        while (const std::uint8_t mark = in.data.rawChar())
            block.insertMarks.append(char(mark));
        block.description = in.text();
        block.preview = in.data.bytes(std::size_t(std::max(in.data.bitLong(), 0)));
    }
    if (in.facts().since(DrawingVersion::r2007)) {
        block.insertUnits = in.data.bitShort();
        block.isExplodable = in.data.bit();
        block.scaling = in.data.rawChar();
    }
    readBlockHandles(in, block, owned, std::size_t(block.insertMarks.size()));
    return block;
}

namespace
{

using enum DrawingVersion;

enum Hidden : int { kBlockName = kFirstHidden };

void blockRecord(Decoder &d)
{
    const BlockHeader block = readBlockHeader(d.in);
    d.text(2, d.recordName(d.in.handle())); // Numbered, where the file has none of its own.
    if (d.since(DrawingVersion::r2000))
        d.handle(340, block.layout);
    constexpr qsizetype kChunk = 127;
    for (qsizetype i = 0; i < block.preview.size(); i += kChunk)
        d.add(310, block.preview.mid(i, kChunk));
    if (d.since(DrawingVersion::r2007)) {
        d.integer(70, block.insertUnits);
        d.integer(280, block.isExplodable);
        d.integer(281, block.scaling);
    }
}

/// "*D12" is "*D" in the file.
QString storedName(const QString &name)
{
    const bool isSheet = name.startsWith(u"*Paper_Space", Qt::CaseInsensitive);
    if (!name.startsWith(u'*') || name.startsWith(u"*Model_Space", Qt::CaseInsensitive))
        return name;
    return name.left(isSheet ? 12 : 2);
}

/// Changes what the record and its BLOCK show.
void settleBlock(Encoder &e, BlockHeader &block)
{
    const QString name = e.text(2);
    if (e.isNew() || name != e.old.shownName())
        block.head.name = storedName(name);
    if (e.left(340) != 0)
        block.layout = e.handle(340);
    block.preview.clear();
    while (e.left(310) != 0)
        block.preview += e.take(310).bytes();
    if (e.left(70) != 0)
        block.insertUnits = e.small(70);
    if (e.left(280) != 0)
        block.isExplodable = e.integer(280) != 0;
    if (e.left(281) != 0)
        block.scaling = e.small(281);
    if (const ResbufList *const begin = e.place.blockBegin) {
        const std::size_t own = subclassBegin(*begin, u"AcDbBlockBegin");
        const auto group = [&](int code) { return findGroup(*begin, code, own); };
        const auto textOf = [](const resbuf *known) { return known ? known->text() : QString(); };
        const std::int64_t flags = group(70) ? group(70)->integer() : 0;
        block.isAnonymous = flags & 1;
        block.hasAttributes = flags & 2;
        block.isXref = flags & 4;
        block.isOverlay = flags & 8;
        if (group(10))
            block.base = group(10)->point();
        block.path = textOf(group(1));
        block.description = textOf(group(4));
    }
    if (const auto &lists = e.place.block) {
        block.begin = lists->begin;
        block.end = lists->end;
        block.layout = lists->layout;
        block.first = lists->first;
        block.last = lists->last;
        block.owned = lists->owned;
        block.inserts = lists->inserts;
        block.insertMarks = QByteArray(qsizetype(lists->inserts.size()), '\1');
    }
}

void writeBlockHandles(Encoder &e, const BlockHeader &block)
{
    const bool isForeign = block.isXref || block.isOverlay;
    e.putHandle(Reference::hardPointer, block.head.xref);
    e.putHandle(Reference::hardOwner, block.begin);
    if (e.since(r2004)) {
        for (const std::uint64_t entity : block.owned)
            e.putHandle(Reference::hardOwner, entity);
    } else if (!isForeign) {
        e.putHandle(Reference::softPointer, block.first);
        e.putHandle(Reference::softPointer, block.last);
    }
    e.putHandle(Reference::hardOwner, block.end);
    for (const std::uint64_t insert : block.inserts)
        e.putHandle(Reference::softPointer, insert);
    e.putHandle(Reference::hardPointer, block.layout);
}

void writeBlockRecord(Encoder &e)
{
    BlockHeader block;
    if (!e.isNew()) {
        ObjectReader reader(e.facts, e.place.old.record);
        reader.readCommon(false);
        block = readBlockHeader(reader);
    }
    settleBlock(e, block);
    if ((block.isXref || block.isOverlay) && !block.owned.empty())
        return e.fail(Host::tr("an external reference cannot own entities"));
    BitWriter &data = e.data;
    writeRecordHead(e, block.head);
    data.bit(block.isAnonymous);
    data.bit(block.hasAttributes);
    data.bit(block.isXref);
    data.bit(block.isOverlay);
    data.bit(block.isUnloaded);
    if (e.since(r2004) && !block.isXref && !block.isOverlay)
        data.bitLong(std::int32_t(block.owned.size()));
    data.point3(block.base);
    e.putText(block.path);
    data.bytes(block.insertMarks);
    data.rawChar(0);
    e.putText(block.description);
    data.bitLong(std::int32_t(block.preview.size()));
    data.bytes(block.preview);
    if (e.since(r2007)) {
        data.bitShort(block.insertUnits);
        data.bit(block.isExplodable);
        data.rawChar(unsigned(block.scaling));
    }
    writeBlockHandles(e, block);
}

/// The name that BLOCK shows is its header's; it has one as well.
void blockName(Decoder &d)
{
    d.hidden(kBlockName, d.in.text());
}

void writeBlockName(Encoder &e)
{
    const auto shown = std::ranges::find(e.rest, 2, &resbuf::restype);
    const resbuf::Value *const known = e.hidden(kBlockName);
    const bool isKept = known && (shown == e.rest.end() || shown->text() == e.old.shownName());
    e.putText(isKept                  ? resbuf(2, *known).text()
              : shown == e.rest.end() ? QString()
                                      : storedName(shown->text()));
}

// INSERT -----------------------------------------------------------------------------------------

void insertScale(Decoder &d)
{
    double x = 1.0, y = 1.0, z = 1.0;
    if (!d.since(r2000)) {
        x = d.in.data.bitDouble();
        y = d.in.data.bitDouble();
        z = d.in.data.bitDouble();
    } else {
        const int flags = d.in.data.twoBits();
        if (flags != 3 && flags != 1)
            x = d.in.data.rawDouble();
        y = z = x;
        if (flags < 2) {
            y = d.in.data.bitDoubleWithDefault(x);
            z = d.in.data.bitDoubleWithDefault(x);
        }
    }
    d.real(41, x);
    d.real(42, y);
    d.real(43, z);
}

void writeInsertScale(Encoder &e)
{
    const double x = e.real(41);
    const double y = e.real(42);
    const double z = e.real(43);
    const bool isEven = y == x && z == x;
    const unsigned flags = isEven ? (x == 1.0 ? 3 : 2) : x == 1.0 ? 1 : 0;
    e.data.twoBits(flags);
    if (flags != 3 && flags != 1)
        e.data.rawDouble(x);
    if (flags < 2) {
        e.data.bitDoubleWithDefault(y, x);
        e.data.bitDoubleWithDefault(z, x);
    }
}

void hasParts(Decoder &d)
{
    d.hasParts = d.in.data.bit();
    d.integer(66, d.hasParts);
}

/// What the object will own; nobody tells by groups.
OwnedParts partsOf(const Encoder &e)
{
    return e.place.parts ? *e.place.parts : e.old.parts;
}

void writeHasParts(Encoder &e)
{
    e.data.bit(e.place.parts ? partsOf(e).end != 0 : e.integer(66) != 0);
}

void partCount(Decoder &d)
{
    if (d.since(r2004) && d.hasParts)
        d.partCount = std::size_t(std::max(d.in.data.bitLong(), 0));
}

bool ownsParts(const Encoder &e)
{
    const bool isInsert = e.place.type == kInsert || e.place.type == kMinsert;
    return !isInsert || partsOf(e).end != 0;
}

void writePartCount(Encoder &e)
{
    if (e.since(r2004) && ownsParts(e))
        e.data.bitLong(std::int32_t(partsOf(e).owned.size()));
}

void parts(Decoder &d)
{
    if (!d.hasParts)
        return;
    if (!d.since(r2004)) {
        d.parts.first = d.in.reference().handle;
        d.parts.last = d.in.reference().handle;
    } else if (d.partCount > d.in.handles.bitsLeft() / 8) {
        d.in.handles.fail();
    } else {
        for (std::size_t i = 0; i < d.partCount; ++i)
            d.parts.owned.push_back(d.in.reference().handle);
    }
    d.parts.end = d.in.reference().handle;
}

void writeParts(Encoder &e)
{
    if (!ownsParts(e))
        return;
    const OwnedParts parts = partsOf(e);
    if (e.since(r2004)) {
        for (const std::uint64_t part : parts.owned)
            e.putHandle(Reference::hardOwner, part);
    } else {
        e.putHandle(Reference::softPointer, parts.first);
        e.putHandle(Reference::softPointer, parts.last);
    }
    e.putHandle(Reference::hardOwner, parts.end);
}

} // namespace

std::span<const SpecialRow> blockSpecials()
{
    static constexpr SpecialRow kRows[] = {
        {"blockRecord", blockRecord, writeBlockRecord}, {"blockName", blockName, writeBlockName},
        {"insertScale", insertScale, writeInsertScale}, {"hasParts", hasParts, writeHasParts},
        {"partCount", partCount, writePartCount},       {"parts", parts, writeParts},
    };
    return kRows;
}

} // namespace dwg
