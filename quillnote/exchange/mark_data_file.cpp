#include "quillnote/exchange/mark_data_file.h"

#include "quillnote/entity/mark_fields.h"

#include "host/base/byte_stream.h"

#include <array>
#include <cmath>
#include <cstring>

using Mark = QuillnoteObj3;
using base::ByteReader;
using base::ByteWriter;

static constexpr qsizetype kLongestText = 32767; ///< Their bytes are counted in 16 bits.

/// The first version of marks whose data records hold a field: 3, 4 or 7.
static int recordVersion(MarkDataKind kind)
{
    switch (kind) {
    case MarkDataKind::marks3:
        return 3;
    case MarkDataKind::marks4:
        return 4;
    default:
        return 7;
    }
}

// Items ----------------------------------------------------------------------------------------------

static void put(ByteWriter &out, bool value)
{
    out.put<std::uint8_t>(value ? 1 : 0);
}
template <base::StreamNumber T>
static void put(ByteWriter &out, T value)
{
    out.put<T>(value);
}
static void put(ByteWriter &out, const QString &text)
{
    const QStringView fitting = QStringView(text).left(kLongestText);
    out.put<std::uint16_t>(std::uint16_t(fitting.size() * 2));
    out.utf16(fitting);
}
/// Points and vectors.
template <class T>
requires requires(T t)
{
    t.x, t.y, t.z;
}
static void put(ByteWriter &out, const T &value)
{
    for (const double part : {value.x, value.y, value.z})
        out.put<double>(part);
}
template <class T>
requires std::is_enum_v<T>
static void put(ByteWriter &out, T code)
{
    put(out, std::underlying_type_t<T>(code));
}
static void put(ByteWriter &out, const QByteArray &bytes)
{
    out.put<std::uint32_t>(std::uint32_t(bytes.size()));
    out.bytes(bytes);
}

static void get(ByteReader &in, bool &value)
{
    value = in.get<std::uint8_t>() != 0;
}
template <std::integral T>
static void get(ByteReader &in, T &value)
{
    in.get(value);
}
/// Numbers that are none make no record.
static void get(ByteReader &in, double &value)
{
    in.get(value);
    if (!std::isfinite(value))
        in.fail();
}
static void get(ByteReader &in, QString &text)
{
    const auto bytes = in.get<std::uint16_t>();
    if (bytes % 2 != 0)
        in.fail();
    text = in.utf16(bytes / 2);
}
template <class T>
requires requires(T t)
{
    t.x, t.y, t.z;
}
static void get(ByteReader &in, T &value)
{
    std::array<double, 3> parts{}; // A mark has sixty points: they are read whole.
    if (const auto taken = in.bytes(sizeof parts); !taken.empty())
        std::memcpy(parts.data(), taken.data(), sizeof parts);
    value.x = parts[0];
    value.y = parts[1];
    value.z = parts[2];
    if (!std::isfinite(parts[0]) || !std::isfinite(parts[1]) || !std::isfinite(parts[2]))
        in.fail();
}
template <class T>
requires std::is_enum_v<T>
static void get(ByteReader &in, T &code)
{
    code = T(in.get<std::underlying_type_t<T>>());
}
static void get(ByteReader &in, QByteArray &bytes)
{
    const auto size = in.get<std::uint32_t>();
    bytes = in.byteArray(size);
}

// Fields of a mark: rows of the one table of fields, in the order of this file ---------------------------

struct RecordRow {
    MarkField::Member member;
    MarkField::Repair repair;
    int since; ///< 3, 4 or 7
};

struct NamedRow {
    QStringView field;
    int since;
};
// The place of the text is no filed field of marks; only this file has it.
static constexpr QStringView kTextAnchor = u"textAnchor";

// clang-format off
static constexpr std::array kSequence = std::to_array<NamedRow>({
    {u"formatVersion", 3}, {u"erasable", 3}, {u"displayMode", 3}, {u"markNumber", 3}, {u"subNumber", 3},
    {u"suggestionContent", 3}, {u"feedbackContent", 3}, {u"targetCorner1", 3}, {u"targetCorner2", 3},
    {u"normal", 7}, {u"xDirection", 7}, {u"targetCorner3", 7}, {u"targetCorner4", 7},
    {u"textBoxCorner1", 7}, {u"textBoxCorner2", 7}, {u"textBoxCorner3", 7}, {u"textBoxCorner4", 7},
    {u"flagStyle", 7}, {u"leaderMode", 7}, {u"reservedShort2", 7}, {u"cornersValid", 7}, {u"flagPoint", 7},
    {kTextAnchor, 7}, {u"vertexCount", 7}, {u"vertices", 7}, {u"reservedDouble", 7},
    {u"bigCategory", 3}, {u"smallCategory", 3}, {u"weight", 3}, {u"feedbackType", 3}, {u"targetStyle", 3},
    {u"reservedShort", 3}, {u"color1", 3}, {u"color2", 3},
    {u"suggestionName", 3}, {u"feedbackName", 3}, {u"chPwMD5", 3}, {u"createTime", 3}, {u"feedbackTime", 3},
    {u"GUID", 3}, {u"sketchData", 3}, {u"textHeight", 4}, {u"leaders", 4},
});
// clang-format on

static std::vector<RecordRow> makeRows()
{
    std::vector<RecordRow> rows;
    for (const NamedRow &named : kSequence) {
        if (named.field == kTextAnchor) {
            rows.push_back({MarkField::Member(&Mark::textAnchor), nullptr, named.since});
        } else {
            const MarkField &field = markField(named.field);
            rows.push_back({field.member, field.repair, named.since});
        }
    }
    return rows;
}

static const std::vector<RecordRow> &recordRows()
{
    static const std::vector<RecordRow> rows = makeRows();
    return rows;
}

/// Runs of points stand whole, with the slots that are not in use.
struct ItemWriter {
    ByteWriter &out;
    const Mark &mark;

    template <class T>
    void operator()(T Mark::*member) const
    {
        put(out, mark.*member);
    }
    void operator()(const fields::PointRun<Mark> &run) const
    {
        for (const AcGePoint3d &point : mark.*run.points)
            put(out, point);
    }
    void operator()(const fields::PointSlots<Mark> &slots) const
    {
        for (std::size_t i = 0; i < fields::kSlots; ++i) {
            put(out, (mark.*slots.points)[i]);
            put(out, (mark.*slots.flags)[i]);
        }
    }
    /// Ids mean nothing in another drawing.
    void operator()(std::vector<AcDbObjectId> Mark::*) const {}
};

struct ItemReader {
    ByteReader &in;
    Mark &mark;

    template <class T>
    void operator()(T Mark::*member) const
    {
        get(in, mark.*member);
    }
    void operator()(const fields::PointRun<Mark> &run) const
    {
        for (AcGePoint3d &point : mark.*run.points)
            get(in, point);
    }
    void operator()(const fields::PointSlots<Mark> &slots) const
    {
        for (std::size_t i = 0; i < fields::kSlots; ++i) {
            get(in, (mark.*slots.points)[i]);
            get(in, (mark.*slots.flags)[i]);
        }
    }
    void operator()(std::vector<AcDbObjectId> Mark::*) const {}
};

// Records --------------------------------------------------------------------------------------------

static void putRecord(ByteWriter &out, const MarkDataRecord &record)
{
    put(out, record.layer);
    out.put<std::uint16_t>(record.layerColor);
    for (const RecordRow &row : recordRows())
        std::visit(ItemWriter{out, *record.mark}, row.member);
    out.put<std::uint64_t>(record.handle.value);
    out.put<std::uint64_t>(record.owner.value);
}

static void putRecord(ByteWriter &out, const TickRecord &tick)
{
    put(out, tick.block);
    put(out, tick.position);
    put(out, tick.normal);
    put(out, tick.rotation);
    put(out, tick.scale);
}

/// A leader mark of an old record has its text box where its target was, corner by corner.
static void upgradeRecord(Mark &mark)
{
    const AcGePoint3d first = mark.targetCorner1;
    const AcGePoint3d second = mark.targetCorner2;
    const bool wasLeader = isNegative(mark.targetStyle);
    upgradeOldMark(mark);
    if (!wasLeader)
        return;
    mark.textBoxCorner1 = first;
    mark.textBoxCorner2 = second;
    mark.textBoxCorner3 = {first.x, second.y, 0.0};
}

static void getRecord(ByteReader &in, MarkDataRecord &record, int version)
{
    if (version >= 7) {
        get(in, record.layer);
        get(in, record.layerColor);
    }
    record.mark = Mark::forReading();
    for (const RecordRow &row : recordRows()) {
        if (row.since > version)
            continue;
        std::visit(ItemReader{in, *record.mark}, row.member);
        if (row.repair)
            row.repair(*record.mark);
    }
    in.get(record.handle.value);
    in.get(record.owner.value);
    if (record.mark->formatVersion < Mark::kFormatVersion)
        upgradeRecord(*record.mark);
    record.mark->formatVersion = Mark::kFormatVersion;
}

static void getRecord(ByteReader &in, TickRecord &tick, int /*version*/)
{
    get(in, tick.block);
    get(in, tick.position);
    get(in, tick.normal);
    get(in, tick.rotation);
    get(in, tick.scale);
}

QByteArray encodeMarkData(const MarkData &data)
{
    MarkDataHeader header;
    header.fingerprint = data.fingerprint;
    header.markCount = std::uint16_t(data.marks.size());
    header.tickCount = std::uint16_t(data.ticks.size());
    header.shared = data.shared;
    ByteWriter out;
    for (const MarkDataRecord &record : data.marks)
        putRecord(out, record);
    for (const TickRecord &tick : data.ticks)
        putRecord(out, tick);
    return withMarkDataHeader(header, out.take());
}

QByteArray encodeErasedMarks(const QStringList &guids, const std::optional<SharedChange> &shared)
{
    MarkDataHeader header;
    header.kind = MarkDataKind::erased;
    header.markCount = std::uint16_t(guids.size());
    header.shared = shared;
    ByteWriter out;
    for (const QString &guid : guids)
        put(out, guid);
    return withMarkDataHeader(header, out.take());
}

/// Reads until a record is not whole. Nothing is set aside for a count before its records are there.
template <class Record>
static std::size_t readRecords(ByteReader &in, std::vector<Record> &records, std::size_t count, int version)
{
    for (std::size_t i = 0; i < count; ++i) {
        Record record;
        getRecord(in, record, version);
        if (in.failed())
            return count - i;
        records.push_back(std::move(record));
    }
    return 0;
}

MarkDataContents readMarkData(QByteArrayView file, const MarkDataHeader &header)
{
    MarkDataContents contents;
    contents.data.fingerprint = header.fingerprint;
    contents.data.shared = header.shared;
    contents.tooManyMarks = header.markCount > kMostDataRecords;
    contents.tooManyTicks = header.tickCount > kMostDataRecords;
    const int version = recordVersion(header.kind);
    const std::size_t marks = contents.tooManyMarks ? 0 : header.markCount;
    const std::size_t ticks = contents.tooManyTicks || version < 7 ? 0 : header.tickCount;
    ByteReader in(file);
    in.seek(kMarkDataHeaderSize);
    contents.missing = readRecords(in, contents.data.marks, marks, version);
    contents.missing += readRecords(in, contents.data.ticks, ticks, version);
    contents.left = in.failed() ? 0 : in.left();
    return contents;
}

std::optional<QStringList> readErasedMarks(QByteArrayView file, const MarkDataHeader &header)
{
    ByteReader in(file);
    in.seek(kMarkDataHeaderSize);
    QStringList guids;
    for (std::uint16_t i = 0; i < header.markCount && !in.failed(); ++i) {
        QString guid;
        get(in, guid);
        guids.append(guid);
    }
    if (in.failed())
        return {};
    return guids;
}
