// One field of a record: reading, writing, dumping, comparing and copying it, whatever its type.
#pragma once

#include "quillnote/entity/field_items.h"
#include "quillnote/entity/field_table.h"

#include <QJsonObject>

#include <algorithm>
#include <span>

namespace fields
{

/// How many points of a run are filed, kept inside the array.
template <class Record>
std::size_t filedPoints(const PointRun<Record> &run, const Record &record)
{
    return static_cast<std::size_t>(std::clamp(run.filed(record), 0, int(kSlots)));
}

// DWG ------------------------------------------------------------------------------------------------

template <class Record>
struct DwgReader {
    AcDbDwgFiler &filer;
    Record &record;

    template <class T>
    Acad::ErrorStatus operator()(T Record::*member) const
    {
        return readItem(filer, record.*member);
    }
    Acad::ErrorStatus operator()(const PointRun<Record> &run) const
    {
        Acad::ErrorStatus status = filer.filerStatus();
        const std::size_t count = filedPoints(run, record);
        for (std::size_t i = 0; status == Acad::eOk && i < count; ++i)
            status = readItem(filer, (record.*run.points)[i]);
        return status;
    }
    Acad::ErrorStatus operator()(const PointSlots<Record> &slots) const
    {
        Acad::ErrorStatus status = filer.filerStatus();
        for (std::size_t i = 0; status == Acad::eOk && i < kSlots; ++i) {
            status = readItem(filer, (record.*slots.points)[i]);
            if (status == Acad::eOk)
                status = readItem(filer, (record.*slots.flags)[i]);
        }
        return status;
    }
};

template <class Record>
struct DwgWriter {
    AcDbDwgFiler &filer;
    const Record &record;

    template <class T>
    Acad::ErrorStatus operator()(T Record::*member) const
    {
        return writeItem(filer, record.*member);
    }
    Acad::ErrorStatus operator()(const PointRun<Record> &run) const
    {
        Acad::ErrorStatus status = filer.filerStatus();
        const std::size_t count = filedPoints(run, record);
        for (std::size_t i = 0; status == Acad::eOk && i < count; ++i)
            status = writeItem(filer, (record.*run.points)[i]);
        return status;
    }
    Acad::ErrorStatus operator()(const PointSlots<Record> &slots) const
    {
        Acad::ErrorStatus status = filer.filerStatus();
        for (std::size_t i = 0; status == Acad::eOk && i < kSlots; ++i) {
            status = writeItem(filer, (record.*slots.points)[i]);
            if (status == Acad::eOk)
                status = writeItem(filer, (record.*slots.flags)[i]);
        }
        return status;
    }
};

/// Reads one field and repairs it. A failure is reported with the line of the row.
template <class Record>
Acad::ErrorStatus readDwgField(AcDbDwgFiler &filer, Record &record, const Field<Record> &field)
{
    const Acad::ErrorStatus status = std::visit(DwgReader<Record>{filer, record}, field.member);
    if (status != Acad::eOk)
        return reportFailure(status, field.row);
    if (field.repair)
        field.repair(record);
    return status;
}

template <class Record>
Acad::ErrorStatus writeDwgField(AcDbDwgFiler &filer, const Record &record, const Field<Record> &field)
{
    const Acad::ErrorStatus status = std::visit(DwgWriter<Record>{filer, record}, field.member);
    return status == Acad::eOk ? status : reportFailure(status, field.row);
}

// DXF ------------------------------------------------------------------------------------------------

/// The rows that are part of DXF, in the sequence of their groups.
template <class Record>
std::vector<const Field<Record> *> dxfSequence(std::span<const Field<Record>> table)
{
    std::vector<const Field<Record> *> rows;
    for (const Field<Record> &field : table) {
        if (field.dxf.code != 0)
            rows.push_back(&field);
    }
    std::ranges::sort(rows, {}, [](const Field<Record> *row) { return row->dxf.place; });
    return rows;
}

template <class Record>
struct DxfWriter {
    AcDbDxfFiler &filer;
    const Record &record;
    int code;

    template <class T>
    Acad::ErrorStatus operator()(T Record::*member) const
    {
        return writeGroup(filer, code, record.*member);
    }
    Acad::ErrorStatus operator()(const PointRun<Record> &run) const
    {
        Acad::ErrorStatus status = filer.filerStatus();
        const std::size_t count = filedPoints(run, record);
        for (std::size_t i = 0; status == Acad::eOk && i < count; ++i)
            status = writeGroup(filer, code, (record.*run.points)[i]);
        return status;
    }
    Acad::ErrorStatus operator()(const PointSlots<Record> &slots) const
    {
        Acad::ErrorStatus status = filer.filerStatus();
        for (std::size_t i = 0; status == Acad::eOk && i < kSlots; ++i) {
            status = writeGroup(filer, code, (record.*slots.points)[i]);
            if (status == Acad::eOk)
                status = writeGroup(filer, slots.flagCode, (record.*slots.flags)[i]);
        }
        return status;
    }
    // Neither has a form in DXF; their rows have code 0.
    Acad::ErrorStatus operator()(QByteArray Record::*) const { return Acad::eInvalidDxfCode; }
    Acad::ErrorStatus operator()(std::vector<AcDbObjectId> Record::*) const { return Acad::eInvalidDxfCode; }
};

template <class Record>
Acad::ErrorStatus writeDxfField(AcDbDxfFiler &filer, const Record &record, const Field<Record> &field)
{
    const Acad::ErrorStatus status =
        std::visit(DxfWriter<Record>{filer, record, field.dxf.code}, field.member);
    return status == Acad::eOk ? status : reportFailure(status, field.row);
}

/// Takes one group: the `occurrence`th with its code that falls to the row, counted from 0.
template <class Record>
struct DxfReader {
    const resbuf &group;
    Record &record;
    std::size_t occurrence;

    template <class T>
    void operator()(T Record::*member) const
    {
        readGroup(group, record.*member);
    }
    void operator()(const PointRun<Record> &run) const
    {
        if (occurrence < kSlots)
            readGroup(group, (record.*run.points)[occurrence]);
    }
    void operator()(const PointSlots<Record> &slots) const
    {
        if (occurrence >= kSlots)
            return;
        if (group.restype == slots.flagCode)
            readGroup(group, (record.*slots.flags)[occurrence]);
        else
            readGroup(group, (record.*slots.points)[occurrence]);
    }
    void operator()(QByteArray Record::*) const {}
    void operator()(std::vector<AcDbObjectId> Record::*) const {}
};

template <class Record>
bool takesGroup(const Field<Record> &field, int code)
{
    const auto *slots = std::get_if<PointSlots<Record>>(&field.member);
    return field.dxf.code == code || (slots && slots->flagCode == code);
}

/// Gives a group to the row that it belongs to: where several rows have the code, to the next one in
/// sequence; the only row of a code takes every group with it. Groups that belong to no row are skipped.
template <class Record>
void readDxfGroup(const resbuf &group, std::size_t occurrence, Record &record,
                  const std::vector<const Field<Record> *> &rows)
{
    const Field<Record> *taker = nullptr;
    std::size_t takers = 0;
    for (const Field<Record> *row : rows) {
        if (!takesGroup(*row, group.restype))
            continue;
        if (takers == 0 || takers == occurrence)
            taker = row;
        ++takers;
    }
    if (!taker || (takers > 1 && occurrence >= takers))
        return;
    std::visit(DxfReader<Record>{group, record, occurrence}, taker->member);
    if (taker->repair)
        taker->repair(record);
}

// Dumps, comparison, copies ----------------------------------------------------------------------------

template <class Record>
struct JsonWriter {
    const Record &record;

    template <class T>
    QJsonValue operator()(T Record::*member) const
    {
        return toJson(record.*member);
    }
    QJsonValue operator()(const PointRun<Record> &run) const
    {
        QJsonArray points;
        for (std::size_t i = 0; i < filedPoints(run, record); ++i)
            points.append(toJson((record.*run.points)[i]));
        return points;
    }
    QJsonValue operator()(const PointSlots<Record> &slots) const
    {
        QJsonArray all;
        for (std::size_t i = 0; i < kSlots; ++i)
            all.append(QJsonArray{toJson((record.*slots.points)[i]), (record.*slots.flags)[i]});
        return all;
    }
};

template <class Record>
QJsonValue fieldToJson(const Record &record, const Field<Record> &field)
{
    return std::visit(JsonWriter<Record>{record}, field.member);
}

template <class Record>
struct Comparison {
    const Record &a;
    const Record &b;

    template <class T>
    bool operator()(T Record::*member) const
    {
        return a.*member == b.*member;
    }
    bool operator()(const PointRun<Record> &run) const
    {
        const std::size_t count = filedPoints(run, a);
        const PointArray &points = a.*run.points;
        return count == filedPoints(run, b) &&
               std::equal(points.begin(), points.begin() + count, (b.*run.points).begin());
    }
    bool operator()(const PointSlots<Record> &slots) const
    {
        return a.*slots.points == b.*slots.points && a.*slots.flags == b.*slots.flags;
    }
};

template <class Record>
bool sameField(const Record &a, const Record &b, const Field<Record> &field)
{
    return std::visit(Comparison<Record>{a, b}, field.member);
}

template <class Record>
struct Copier {
    const Record &from;
    Record &to;

    template <class T>
    void operator()(T Record::*member) const
    {
        to.*member = from.*member;
    }
    void operator()(const PointRun<Record> &run) const { to.*run.points = from.*run.points; }
    void operator()(const PointSlots<Record> &slots) const
    {
        to.*slots.points = from.*slots.points;
        to.*slots.flags = from.*slots.flags;
    }
};

template <class Record>
void copyField(const Record &from, Record &to, const Field<Record> &field)
{
    std::visit(Copier<Record>{from, to}, field.member);
}

} // namespace fields
