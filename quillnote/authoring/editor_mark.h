// The way from two points to a new mark: the editor asks for the opinion, and what it confirms is made.
#pragma once

#include "quillnote/authoring/create_mark.h"

/// Opens the mark editor, with the picked place shown in the drawing meanwhile, and completes the request
/// (points and kind) with its texts and the reviewer's name of the settings. A null id when the editor is
/// cancelled, or when the drawing refuses the mark (then with a printed line). The keyword text goes to the
/// phrase bank.
AcDbObjectId makeMarkFromEditor(NewMark request, const QString &keywordText = {});
