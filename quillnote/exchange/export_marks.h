// Marks and ticks out of a drawing into mark data files.
#pragma once

#include "quillnote/exchange/mark_data_file.h"

class AcDbDatabase;

/// "$FINGERPRINTGUID" of the drawing, which its copies and its twin in another format share; "0" without one.
QString drawingFingerprint(const AcDbDatabase &database);

/// The mark with its layer and its place in the drawing; it must be open for read.
MarkDataRecord markDataRecord(const QuillnoteObj3 &mark);

/// All marks and ticks of model space and the layouts.
MarkData marksOf(const AcDbDatabase &database);

/// Writes the bytes under an unused name in the synchronisation folder. The path; empty when nothing was
/// written, which is said.
QString writeSynchronisationFile(const QByteArray &bytes, const QString &prefix);

/// False, and said, for more marks or ticks than a reader would take.
bool fitsIntoFile(const MarkData &data);

/// Command: writes the data file beside the drawing.
void QN3_DataFileOut();
