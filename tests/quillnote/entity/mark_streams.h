// The full mark: every field has a value of its own. full_mark.hex has its bytes and full_mark.txt its
// values, both written by hand from docs/formats/mark-stream.md; corpus/mark_dxf/full.txt has its groups.
#pragma once

#include "quillnote/entity/mark_record.h"

#include "host/acdb/resbuf.h"

namespace tests
{

/// The drawing that the ids of the streams belong to: lines, one of which is the first id.
std::unique_ptr<AcDbDatabase> drawingOfStreams();

/// The full mark as records of this version hold it.
QByteArray markStream(int version = QuillnoteObj3::kFormatVersion, std::int16_t targetStyle = 51);
/// Its groups, the marker first.
ResbufList dxfGroups();
/// The fields of a mark, a line for each: "name=value".
QString fieldLines(const QuillnoteObj3 &mark);

/// Makes a mark the full one; `database` gives the ids.
void setFullMark(QuillnoteObj3 &mark, AcDbDatabase &database);

/// Puts a mark at the end of model space and closes it.
AcDbObjectId append(AcDbDatabase &database, std::unique_ptr<QuillnoteObj3> mark);

} // namespace tests
