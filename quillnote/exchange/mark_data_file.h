// Mark data files: the review marks and tick symbols of a drawing outside the drawing, and files that name
// marks that were erased. Bytes into values and back; what a drawing makes of them is import_marks.h and
// export_marks.h. docs/formats/mark-data-file.md describes the bytes.
#pragma once

#include "quillnote/aids/tick_symbols.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/exchange/header/data_header.h"

#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

/// A mark with what the file says of the place that it came from.
struct MarkDataRecord {
    QString layer;                ///< "0" when the layer was not known; empty in records before version 7.
    std::uint16_t layerColor = 0; ///< Colour index.
    std::unique_ptr<QuillnoteObj3> mark;
    AcDbHandle handle; ///< In the drawing that it came from.
    AcDbHandle owner;  ///< The layout's block record there.
};

struct MarkData {
    QString fingerprint; ///< Of the drawing that the marks came from; "0" for one without.
    std::vector<MarkDataRecord> marks;
    std::vector<TickRecord> ticks;
    std::optional<SharedChange> shared;
};

/// A file of version 7. Texts beyond 32767 characters are cut: that is what a file can count.
/// Not more than kMostDataRecords marks and as many ticks.
QByteArray encodeMarkData(const MarkData &data);
/// A file that names erased marks by their GUIDs.
QByteArray encodeErasedMarks(const QStringList &guids, const std::optional<SharedChange> &shared = {});

/// What could be read: whole records only. Records end where the file is cut off or a number makes no sense.
struct MarkDataContents {
    MarkData data;
    std::size_t missing = 0;   ///< Records that the header counts and that are not there whole.
    std::size_t left = 0;      ///< Bytes behind the last record.
    bool tooManyMarks = false; ///< The header counts more marks than a file may hold: none was read.
    bool tooManyTicks = false;
};
MarkDataContents readMarkData(QByteArrayView file, const MarkDataHeader &header);

/// The GUIDs of a file of erased marks; none when the file is cut off.
std::optional<QStringList> readErasedMarks(QByteArrayView file, const MarkDataHeader &header);
