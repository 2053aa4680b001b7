// The one table of the review mark's filed fields. DWG and DXF filing, dumps and comparison walk it.
// How to add a field: docs/guides/add-a-field.md.
#pragma once

#include "quillnote/entity/mark_record.h"

#include <QJsonValue>
#include <QStringList>

#include <span>
#include <utility>

using MarkField = fields::Field<QuillnoteObj3>;

/// In the order of DWG streams; the first row is the format version.
std::span<const MarkField> markFields();
/// The rows that are part of DXF, in the sequence of their groups.
const std::vector<const MarkField *> &markDxfSequence();
/// A row by its name; a name that is no field is a programmer's fault.
const MarkField &markField(QStringView name);

/// Reads a few fields of a mark that nobody has in memory into `mark`, out of the bytes of its drawing and
/// past its pictures. The rows are DXF ones that have their group code to themselves. False, and `mark` is of
/// no use, when the mark has to be opened: it is in memory, or no record that this program takes.
bool peekMarkFields(AcDbObjectId id, std::span<const MarkField *const> rows, QuillnoteObj3 &mark);

/// The same mark in no drawing: its filed fields and the place of its text.
std::unique_ptr<QuillnoteObj3> copyOfMark(const QuillnoteObj3 &mark);

/// Every filed field with its value, in the order of the table. Pictures and the sketch as size and
/// SHA-256, ids as handles.
std::vector<std::pair<QString, QJsonValue>> markFieldValues(const QuillnoteObj3 &mark);
/// The names of the fields that are not the same; empty for equal marks.
QStringList differingMarkFields(const QuillnoteObj3 &a, const QuillnoteObj3 &b);
