// Review marks as bytes and as groups, written by hand from docs/formats/mark-stream.md and mark-dxf.md,
// and the mark that they describe: every field has a value of its own.
#pragma once

#include "quillnote/entity/mark_record.h"

#include "host/acdb/resbuf.h"

namespace tests
{

/// The drawing that the ids of the streams belong to: lines, one of which is the first id.
std::unique_ptr<AcDbDatabase> drawingOfStreams();

QByteArray version7Stream();
/// Old records: without the fields of version 7, with this outline code.
QByteArray version6Stream(std::int16_t targetStyle);
QByteArray version4Stream();
QByteArray version3Stream();

/// Sets every filed field as the version 7 stream has it; `database` gives the ids.
void setFullMark(QuillnoteObj3 &mark, AcDbDatabase &database);

/// The groups of the full mark, the marker first.
ResbufList dxfGroups();

} // namespace tests
