#include "host/formats/dwg/dwgencoder.h"

#include "host/base/host_text.h"
#include "host/formats/dwg/dwgchecksums.h"
#include "host/formats/dwg/dwgencoding.h"
#include "host/formats/dwg/dwgsection.h"
#include "host/formats/dwg/dwgsource.h"

#include <algorithm>
#include <map>

namespace dwg
{

std::uint64_t Names::handleOf(SymbolTable table, const QString &name) const
{
    return database.tableRecord(table, name).handle().value;
}

EncodePlace encodePlace(const AcDbDatabase &database, const DwgSource &source, const AcDbStub &stub,
                        const ResbufList &groups)
{
    EncodePlace place;
    place.handle = stub.handle;
    if (stub.has(AcDbStub::kHasSource)) {
        place.old = source.placeOf(stub);
        place.type = ObjectReader(source.facts(), place.old.record).type();
        return place;
    }
    place.old.kindName = acdbKindName(stub.kind);
    place.old.isEntity = stub.has(AcDbStub::kEntity);
    if (const AcDbStub *const owner = stub.owner != 0 ? database.stub(stub.owner) : nullptr)
        place.owner = place.old.owner = owner->handle;
    place.old.kind = kindOfGroups(place.old.kindName, groups);
    const DwgClass *const known = source.classNamed(place.old.kindName);
    place.type = known ? known->number : place.old.kind ? place.old.kind->type : 0;
    return place;
}

namespace
{

/// What all objects show in front of their own groups.
struct Head {
    std::vector<std::uint64_t> reactors;
    std::uint64_t dictionary = 0;
    std::uint64_t owner = 0;
    QString foreign;                             ///< Groups of an application, which DWG has no place for.
    std::map<int, std::vector<resbuf>> ofEntity; ///< By code.

    bool has(int code) const { return ofEntity.contains(code); }
    const resbuf &at(int code) const
    {
        static const resbuf kNone;
        const auto found = ofEntity.find(code);
        return found == ofEntity.end() ? kNone : found->second.front();
    }
    bool sameIn(const Head &other, std::initializer_list<int> codes) const
    {
        return std::ranges::all_of(codes, [&](int code) { return at(code) == other.at(code); });
    }
};

/// An object's groups, taken apart. Entities have "AcDbEntity" in front of their own.
struct Parts {
    Head head;
    ResbufList own, extended;
};

/// What an xrecord holds may look like extended data: those that it has are known.
std::size_t ownEnd(const ResbufList &groups, const OldRecord &old)
{
    const std::size_t extended = old.extended.size();
    const bool isXrecord = !groups.empty() && groups.front().text() == u"XRECORD" && old.isThere();
    if (isXrecord && extended <= groups.size() &&
        std::equal(old.extended.begin(), old.extended.end(), groups.end() - std::ptrdiff_t(extended)))
        return groups.size() - extended;
    return extendedDataBegin(groups);
}

Parts takeApart(const ResbufList &groups, std::size_t end, bool isEntity, bool isTable)
{
    Parts parts;
    parts.extended.assign(groups.begin() + std::ptrdiff_t(end), groups.end());
    QString application;
    bool isOfEntity = false;
    std::size_t i = groups.empty() ? 0 : 1;
    for (; i < end; ++i) {
        const resbuf &group = groups[i];
        const QString text = group.restype == 100 || group.restype == 102 ? group.text() : QString();
        if (group.restype == 100 && text == u"AcDbEntity" && isEntity && !isOfEntity)
            isOfEntity = true;
        else if (group.restype == 100)
            break;
        else if (group.restype == 102)
            application = text.startsWith(u'{') ? text.mid(1) : QString();
        else if (application == u"ACAD_REACTORS")
            parts.head.reactors.push_back(group.handle().value);
        else if (application == u"ACAD_XDICTIONARY")
            parts.head.dictionary = group.handle().value;
        else if (!application.isEmpty())
            parts.head.foreign = application;
        else if (isOfEntity)
            parts.head.ofEntity[group.restype].push_back(group);
        else if (group.restype == 330)
            parts.head.owner = group.handle().value;
        else if (group.restype != 5 && group.restype != 105 && !(isTable && group.restype == 2))
            break; // Kinds without a subclass marker.
    }
    parts.own.assign(groups.begin() + std::ptrdiff_t(std::min(i, end)), groups.begin() + std::ptrdiff_t(end));
    return parts;
}

QByteArray graphicsOf(const Head &head)
{
    QByteArray bytes;
    if (const auto chunks = head.ofEntity.find(310); chunks != head.ofEntity.end()) {
        for (const resbuf &chunk : chunks->second)
            bytes += chunk.bytes();
    }
    return bytes;
}

class RecordEncoder
{
public:
    RecordEncoder(const FileFacts &facts, const Names &names, const EncodePlace &place,
                  const ResbufList &groups)
        : m_facts(facts), m_names(names), m_place(place), m_old(facts, names.neighbours, place.old),
          m_out(facts, names, place, m_old), m_isTable(place.old.kindName == "TABLE"),
          m_parts(takeApart(groups, ownEnd(groups, m_old), place.old.isEntity, m_isTable)),
          m_common(m_old.common)
    {
        m_before = takeApart(m_old.head, m_old.head.size(), place.old.isEntity, m_isTable).head;
    }

    base::Result<QByteArray, QString> run();

private:
    bool isNew() const { return m_out.isNew(); }
    void settleCommon();
    void settleEntity();
    void settleColor();
    template <class Take>
    void settleHandle(int group, int &flags, std::uint64_t &handle, Take takeHandle);
    std::uint64_t bookColor(const QString &name);

    void writeExtended();
    void writeApplication(const QString &name, const QByteArray &items);
    bool extendedItem(const resbuf &item, BitWriter &out);
    void writeCommonData();
    void writeEntityData();
    void writeCommonHandles();
    void writeOwn();
    bool keepsOwn() const;
    void copyOwn();
    void writeTable();
    void writeFiled();
    void writeProxy();
    void writeRow();
    QByteArray record();
    QString named() const;

    const FileFacts &m_facts;
    const Names &m_names;
    const EncodePlace &m_place;
    OldRecord m_old;
    Encoder m_out;
    bool m_isTable;
    Parts m_parts;
    Head m_before; ///< What the old record shows.
    Common m_common;
    QByteArray m_graphics;
    bool m_isCopied = false; ///< The own data are the old ones, texts included.
};

QString RecordEncoder::named() const
{
    return QStringLiteral("%1 %2").arg(QString::fromLatin1(m_place.old.kindName),
                                       QString::number(m_place.handle, 16).toUpper());
}

// What all objects have --------------------------------------------------------------------------

void RecordEncoder::settleCommon()
{
    m_common.reactors = m_parts.head.reactors;
    m_common.dictionary = m_parts.head.dictionary;
    if (m_place.owner)
        m_common.owner = {Reference::softPointer, *m_place.owner};
    else if (isNew() || (!m_place.old.isEntity && m_parts.head.owner != m_before.owner))
        m_common.owner = {Reference::softPointer, m_parts.head.owner};
    if (m_place.entityMode)
        m_common.entityMode = *m_place.entityMode;
    if (m_place.chain) {
        m_common.noLinks = false;
        std::tie(m_common.previous, m_common.next) = *m_place.chain;
    }
    if (!m_parts.head.foreign.isEmpty())
        m_out.fail(
            Host::tr("groups of the application %1 have no place in a DWG file").arg(m_parts.head.foreign));
    if (m_place.old.isEntity)
        settleEntity();
}

/// A handle that stands there when its flags are 3.
template <class Take>
void RecordEncoder::settleHandle(int group, int &flags, std::uint64_t &handle, Take takeHandle)
{
    if (m_parts.head.sameIn(m_before, {group}))
        return;
    constexpr int kByHandle = 3;
    flags = m_parts.head.has(group) ? kByHandle : 0;
    handle = takeHandle(m_parts.head.at(group));
}

void RecordEncoder::settleEntity()
{
    const Head &now = m_parts.head;
    const auto record = [this](SymbolTable table, const QString &name) {
        const std::uint64_t handle = m_names.handleOf(table, name);
        if (handle == 0)
            m_out.fail(Host::tr("the drawing has nothing called \"%1\"").arg(name));
        return handle;
    };
    if (isNew() || !now.sameIn(m_before, {8}))
        m_common.layer = record(SymbolTable::layer, now.has(8) ? now.at(8).text() : QStringLiteral("0"));
    const QString linetype = now.at(6).text();
    if (!now.sameIn(m_before, {6})) {
        const auto is = [&linetype](QStringView name) {
            return linetype.compare(name, Qt::CaseInsensitive) == 0;
        };
        m_common.linetypeFlags = linetype.isEmpty() || is(u"ByLayer") ? 0
                                 : is(u"ByBlock")                     ? 1
                                 : is(u"Continuous")                  ? 2
                                                                      : 3;
        if (m_common.linetypeFlags == 3)
            m_common.linetype = record(SymbolTable::linetype, linetype);
    }
    const auto asHandle = [](const resbuf &group) { return group.handle().value; };
    settleHandle(347, m_common.materialFlags, m_common.material, asHandle);
    settleHandle(390, m_common.plotStyleFlags, m_common.plotStyle, asHandle);
    settleColor();
    if (!now.sameIn(m_before, {48}))
        m_common.linetypeScale = now.has(48) ? now.at(48).real() : 1.0;
    if (!now.sameIn(m_before, {60}))
        m_common.visibility = (m_common.visibility & ~1) | int(now.at(60).integer() & 1);
    if (!now.sameIn(m_before, {370}))
        m_common.lineweight = now.has(370) ? lineweightIndex(int(now.at(370).integer())) : 29;
    if (!now.sameIn(m_before, {284}))
        m_common.shadowFlags = int(now.at(284).integer());
    m_graphics = graphicsOf(now);
}

std::uint64_t RecordEncoder::bookColor(const QString &name)
{
    const auto known = std::ranges::find(m_names.neighbours.bookColors, name,
                                         [](const auto &color) { return color.second; });
    if (known == m_names.neighbours.bookColors.end()) {
        m_out.fail(Host::tr("the drawing has no colour \"%1\"").arg(name));
        return 0;
    }
    return known->first;
}

void RecordEncoder::settleColor()
{
    const Head &now = m_parts.head;
    if (!now.sameIn(m_before, {62, 420, 430})) {
        m_common.color = now.has(62) ? int(now.at(62).integer()) : 256;
        m_common.colorWord = std::uint16_t(m_common.color);
        m_common.trueColor.reset();
        m_common.bookColor = 0;
        if (m_facts.since(DrawingVersion::r2004) && now.has(420)) {
            m_common.trueColor = 0xC2000000 | std::uint32_t(now.at(420).integer());
            m_common.colorWord = 0x8000;
        }
        if (m_facts.since(DrawingVersion::r2004) && now.has(430)) {
            m_common.bookColor = bookColor(now.at(430).text());
            m_common.colorWord |= 0x4000;
        }
        m_common.colorWord |= m_common.transparency ? 0x2000u : 0u;
    }
    if (m_facts.since(DrawingVersion::r2004) && !now.sameIn(m_before, {440})) {
        m_common.transparency.reset();
        m_common.colorWord &= ~0x2000u;
        if (now.has(440)) {
            m_common.transparency = std::uint32_t(now.at(440).integer());
            m_common.colorWord |= 0x2000;
        }
    }
}

// Extended data ----------------------------------------------------------------------------------

void bigEndianHandle(std::uint64_t handle, BitWriter &out)
{
    out.bits(handle, 64);
}

/// In the code page that the record has had for such texts, where it has any.
bool extendedText(const FileFacts &facts, std::optional<std::uint16_t> page, const QString &text,
                  BitWriter &out)
{
    if (facts.hasTextStream()) {
        out.rawShort(std::uint16_t(text.size()));
        for (const QChar unit : text)
            out.rawShort(unit.unicode());
        return text.size() <= 0xFFFF;
    }
    const auto codec = page ? base::TextCodec::fromDwgNumber(*page) : facts.codec;
    const QByteArray bytes =
        (codec.known() ? codec : facts.codec).encode(text, base::Substitute::unicodeEscape);
    out.rawChar(unsigned(bytes.size()));
    const std::uint16_t number = page ? *page : facts.codec.dwgNumber();
    out.rawShort(std::uint16_t(number << 8 | number >> 8)); // The other byte first.
    out.bytes(bytes);
    return bytes.size() <= 0xFF;
}

bool RecordEncoder::extendedItem(const resbuf &item, BitWriter &out)
{
    const int code = item.restype;
    out.rawChar(unsigned(code - 1000));
    switch (code) {
    case 1000:
        return extendedText(m_facts, m_old.kept.extendedPage, item.text(), out);
    case 1002:
        out.rawChar(item.text() == u"}" ? 1 : 0);
        return true;
    case 1003:
        bigEndianHandle(m_names.handleOf(SymbolTable::layer, item.text()), out);
        return true;
    case 1004:
        out.rawChar(unsigned(item.bytes().size()));
        out.bytes(item.bytes());
        return item.bytes().size() <= 0xFF;
    case 1005:
        bigEndianHandle(item.handle().value, out);
        return true;
    case 1070:
        out.rawShort(std::uint16_t(item.integer()));
        return true;
    case 1071:
        out.rawLong(std::uint32_t(item.integer()));
        return true;
    default:
        if (code >= 1010 && code <= 1013)
            out.rawPoint3(item.point());
        else if (code >= 1040 && code <= 1042)
            out.rawDouble(item.real());
        else
            return false;
        return true;
    }
}

void RecordEncoder::writeApplication(const QString &name, const QByteArray &items)
{
    constexpr qsizetype kLongest = 0xFFFF;
    const std::uint64_t application = m_names.handleOf(SymbolTable::appId, name);
    if (application == 0)
        m_out.fail(
            Host::tr("the application %1 of extended data is not registered in the drawing").arg(name));
    if (items.size() > kLongest)
        m_out.fail(Host::tr("the extended data of %1 are too long").arg(name));
    m_out.data.bitShort(int(items.size()));
    m_out.data.handle(int(Reference::hardPointer), application);
    m_out.data.bytes(items);
}

void RecordEncoder::writeExtended()
{
    if (!isNew() && !m_place.isTrial && m_parts.extended == m_old.extended) {
        Bits at = m_old.reader.dataFrom(m_common.extendedBegin);
        const std::size_t size = m_old.extendedEnd - m_common.extendedBegin;
        m_out.data.bits(at.bits(size), size);
    } else {
        for (std::size_t i = 0; i < m_parts.extended.size();) {
            const QString name = m_parts.extended[i].text();
            BitWriter items;
            for (++i; i < m_parts.extended.size() && m_parts.extended[i].restype != 1001; ++i) {
                if (!extendedItem(m_parts.extended[i], items))
                    m_out.fail(Host::tr("group %1 of extended data cannot be stored")
                                   .arg(m_parts.extended[i].restype));
            }
            writeApplication(name, items.written());
        }
    }
    m_out.data.bitShort(0);
}

// The parts of a record --------------------------------------------------------------------------

void RecordEncoder::writeCommonData()
{
    BitWriter &data = m_out.data;
    data.handle(0, m_place.handle);
    writeExtended();
    if (m_place.old.isEntity) {
        data.bit(!m_graphics.isEmpty());
        if (!m_graphics.isEmpty() && m_facts.since(DrawingVersion::r2010))
            data.bitLongLong(std::uint64_t(m_graphics.size()));
        else if (!m_graphics.isEmpty())
            data.rawLong(std::uint32_t(m_graphics.size()));
        data.bytes(m_graphics);
        data.twoBits(unsigned(m_common.entityMode));
    }
    data.bitLong(std::int32_t(m_common.reactors.size()));
    if (m_facts.since(DrawingVersion::r2004))
        data.bit(m_common.dictionary == 0);
    if (m_facts.since(DrawingVersion::r2013))
        data.bit(m_common.hasBinaryData);
    if (m_place.old.isEntity)
        writeEntityData();
}

void RecordEncoder::writeEntityData()
{
    BitWriter &data = m_out.data;
    if (!m_facts.since(DrawingVersion::r2004))
        data.bit(m_common.noLinks);
    data.bitShort(int(m_common.colorWord));
    if (m_facts.since(DrawingVersion::r2004)) {
        if (m_common.trueColor)
            data.bitLong(std::int32_t(*m_common.trueColor));
        if (m_common.transparency)
            data.bitLong(std::int32_t(*m_common.transparency));
    }
    data.bitDouble(m_common.linetypeScale);
    data.twoBits(unsigned(m_common.linetypeFlags));
    if (m_facts.since(DrawingVersion::r2007)) {
        data.twoBits(unsigned(m_common.materialFlags));
        data.rawChar(unsigned(m_common.shadowFlags));
    }
    data.twoBits(unsigned(m_common.plotStyleFlags));
    if (m_facts.since(DrawingVersion::r2010)) {
        for (const std::uint64_t style : m_common.visualStyles)
            data.bit(style != 0);
    }
    data.bitShort(m_common.visibility);
    data.rawChar(unsigned(m_common.lineweight));
}

void RecordEncoder::writeCommonHandles()
{
    const auto put = [this](Reference kind, std::uint64_t handle) { m_out.putHandle(kind, handle); };
    if (!m_place.old.isEntity || m_common.entityMode == 0)
        put(Reference::softPointer, m_common.owner.handle);
    for (const std::uint64_t reactor : m_common.reactors)
        put(Reference::softPointer, reactor);
    if (!m_facts.since(DrawingVersion::r2004) || m_common.dictionary != 0)
        put(Reference::hardOwner, m_common.dictionary);
    if (!m_place.old.isEntity)
        return;
    if (!m_facts.since(DrawingVersion::r2004) && !m_common.noLinks) {
        put(Reference::softPointer, m_common.previous);
        put(Reference::softPointer, m_common.next);
    }
    if (m_common.colorWord & 0x4000 && m_facts.since(DrawingVersion::r2004))
        put(Reference::hardPointer, m_common.bookColor);
    put(Reference::hardPointer, m_common.layer);
    if (m_common.linetypeFlags == 3)
        put(Reference::hardPointer, m_common.linetype);
    if (m_common.materialFlags == 3)
        put(Reference::hardPointer, m_common.material);
    if (m_common.plotStyleFlags == 3)
        put(Reference::hardPointer, m_common.plotStyle);
    for (const std::uint64_t style : m_common.visualStyles) {
        if (style != 0)
            put(Reference::hardPointer, style);
    }
}

// Own data ---------------------------------------------------------------------------------------

/// Compared as groups, so that it does not matter who made them.
bool RecordEncoder::keepsOwn() const
{
    const bool isTold =
        m_place.parts || m_place.block || m_place.blockBegin || m_place.entries || m_place.fields;
    return !isNew() && !m_place.isTrial && !isTold && m_parts.own == m_old.own;
}

void RecordEncoder::copyOwn()
{
    const ObjectReader &reader = m_old.reader;
    m_isCopied = true;
    Bits data = reader.dataFrom(m_old.ownData);
    const std::size_t size = reader.handlesBegin() - m_old.ownData;
    m_out.data.bits(data.bits(size), size);
    const std::size_t begin =
        m_old.firstOwnHandle == 0 ? reader.handlesBegin() : m_old.handles[m_old.firstOwnHandle - 1].end;
    const std::size_t end = m_old.handles.empty() ? begin : m_old.handles.back().end;
    Bits handles = reader.dataFrom(begin);
    m_out.handles.bits(handles.bits(end - begin), end - begin);
}

/// Records that the head lists behind those that it counts (the spaces, the linetypes of layer and block)
/// stay there.
void RecordEncoder::writeTable()
{
    if (isNew() || !m_place.entries)
        return m_out.fail(Host::tr("a table cannot be made anew"));
    Bits data = m_old.reader.dataFrom(m_old.ownData);
    const auto counted = std::size_t(std::max(data.bitLong(), 0));
    const bool hasFurther = m_place.old.tableName == u"DIMSTYLE";
    const std::size_t begin = std::min(m_old.firstOwnHandle + counted, m_old.handles.size());
    const std::span<const StoredHandle> behind = std::span(m_old.handles).subspan(begin);
    std::vector<std::uint64_t> entries;
    for (const std::uint64_t entry : *m_place.entries) {
        const bool isBehind = std::ranges::any_of(
            behind, [entry](const StoredHandle &each) { return entry != 0 && each.meant.handle == entry; });
        if (!isBehind || hasFurther)
            entries.push_back(entry);
    }
    m_out.data.bitLong(std::int32_t(entries.size()));
    if (hasFurther)
        m_out.data.rawChar(data.rawChar());
    for (const std::uint64_t entry : entries)
        m_out.putHandle(Reference::softOwner, entry);
    for (const StoredHandle &each : behind)
        m_out.putHandle(each.meant.kind, each.meant.handle);
}

void RecordEncoder::writeFiled()
{
    const FiledFields &fields = *m_place.fields;
    m_out.data.bits(fields.data, fields.dataBits);
    m_out.texts.bits(fields.texts, fields.textBits);
    for (const HandleRef &handle : fields.handles)
        m_out.putHandle(handle.kind, handle.handle);
}

/// The bits that a kind without a table shows as its groups.
void RecordEncoder::writeProxy()
{
    const bool showsBits = !m_parts.own.empty() && m_parts.own.front().restype == 100 &&
                           m_parts.own.front().text().startsWith(u"AcDbProxy");
    if (!showsBits)
        return m_out.fail(Host::tr("a DWG file has no form for objects of this kind"));
    QByteArray bytes[2]; // Texts, data
    std::int64_t bits[2] = {};
    const bool isWide = m_facts.since(DrawingVersion::r2010);
    if (!isWide && m_facts.hasTextStream())
        return m_out.fail(Host::tr("its texts cannot be told from its other data"));
    std::map<int, std::int64_t> numbers;
    for (const resbuf &group : m_parts.own) {
        const int code = group.restype;
        if (code == 162 || code == 161 || code == 93)
            bits[code == 162 ? 0 : 1] = group.integer();
        else if (code == 311 || code == 310)
            bytes[code == 311 ? 0 : 1] += group.bytes();
        else if (code >= 330 && code <= 369)
            m_out.putHandle(referenceOf(code), group.handle().value);
        else if (code != 100)
            numbers[code] = group.integer();
    }
    if (m_place.type == kProxyEntity || m_place.type == kProxyObject) {
        m_out.data.bitLong(std::int32_t(numbers[91]));
        m_out.data.bitLong(std::int32_t(numbers[m_facts.since(DrawingVersion::r2018) ? 71 : 95]));
        if (m_facts.since(DrawingVersion::r2018))
            m_out.data.bitLong(std::int32_t(numbers[97]));
        m_out.data.bit(numbers[70] != 0);
    }
    for (int i = 0; i < 2; ++i) {
        if (bits[i] < 0 || bits[i] > bytes[i].size() * 8)
            return m_out.fail(Host::tr("its bits are damaged"));
    }
    m_out.texts.bits(bytes[0], std::size_t(bits[0]));
    m_out.data.bits(bytes[1], std::size_t(bits[1]));
}

void RecordEncoder::writeRow()
{
    const Kind &kind = *m_place.old.kind;
    if (!m_place.isTrial && !mayEncode(kind, m_facts.version))
        return m_out.fail(
            Host::tr("objects of this kind can be kept in a DWG file, but not changed or added"));
    m_out.setGroups(kind, m_parts.own);
    m_out.writeFields(kind);
}

void RecordEncoder::writeOwn()
{
    if (keepsOwn())
        copyOwn();
    else if (m_place.fields)
        writeFiled();
    else if (m_isTable)
        writeTable();
    else if (m_place.old.kind)
        writeRow();
    else
        writeProxy();
}

// The record -------------------------------------------------------------------------------------

QByteArray RecordEncoder::record()
{
    BitWriter own = m_out.data;
    if (m_facts.hasTextStream() && !m_isCopied)
        appendTexts(m_out.texts, own);
    BitWriter body;
    body.objectType(m_facts.version, m_place.type);
    constexpr std::size_t kLong = 32;
    if (!m_facts.since(DrawingVersion::r2010))
        body.rawLong(std::uint32_t(body.size() + kLong + own.size()));
    body.append(own);
    const std::size_t handlesBegin = body.size();
    body.append(m_out.handles);
    body.pad(isNew() || m_old.isPaddedWithOnes);
    BitWriter record;
    record.modularShort(std::uint32_t(body.size() / 8));
    if (m_facts.since(DrawingVersion::r2010))
        record.modularChar(body.size() - handlesBegin);
    record.append(body);
    const QByteArray &bytes = record.written();
    record.rawShort(crc16({bytes.constData(), std::size_t(bytes.size())}));
    return record.written();
}

base::Result<QByteArray, QString> RecordEncoder::run()
{
    if (!m_facts.since(DrawingVersion::r2000))
        m_out.fail(Host::tr("DWG drawings of this version are only read"));
    if (m_place.type == 0)
        m_out.fail(Host::tr("DWG drawings of this version do not have that kind"));
    settleCommon();
    writeCommonHandles();
    writeCommonData();
    if (m_out.failure().isEmpty())
        writeOwn();
    if (!m_out.failure().isEmpty())
        return base::Failure{named() + QStringLiteral(": ") + m_out.failure()};
    return record();
}

} // namespace

base::Result<QByteArray, QString> encodeObject(const FileFacts &facts, const Names &names,
                                               const EncodePlace &place, const ResbufList &groups)
{
    return RecordEncoder(facts, names, place, groups).run();
}

} // namespace dwg
