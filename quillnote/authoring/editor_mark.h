// The way from two points to a new mark: the editor asks for the opinion, and what it confirms is made.
#pragma once

#include "quillnote/authoring/create_mark.h"

#include <optional>

/// Opens the mark editor and completes the request (points and kind) with its texts and the reviewer's name
/// of the settings. None when the editor is cancelled or the drawing is closed meanwhile, or when the drawing
/// has no number left for a mark (then with a printed line, and without opening the editor).
std::optional<NewMark> askOpinion(NewMark request);
/// A null id, with a printed line, when the drawing refuses the mark.
AcDbObjectId makeMark(const NewMark &request);
/// Both: a null id also when there is nothing to make.
AcDbObjectId makeMarkFromEditor(const NewMark &request);
