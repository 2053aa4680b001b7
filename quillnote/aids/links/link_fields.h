// The one table of the hot link's filed fields, in the order of DWG streams.
#pragma once

#include "quillnote/aids/links/link_record.h"
#include "quillnote/entity/field_table.h"

#include <QStringList>

#include <span>

using LinkField = fields::Field<QuillLinkObj>;

/// The first row is the format version.
std::span<const LinkField> linkFields();
/// The names of the fields that are not the same; empty for equal links.
QStringList differingLinkFields(const QuillLinkObj &a, const QuillLinkObj &b);
