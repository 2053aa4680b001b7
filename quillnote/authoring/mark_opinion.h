// The mark editor on the opinion of a mark: of a new one, which it makes when it is confirmed, and of one
// that is there.
#pragma once

#include "quillnote/authoring/ink_sketch.h"
#include "quillnote/authoring/new_mark.h"

#include <optional>

/// Opens the mark editor, with the picked place shown in the drawing meanwhile, and completes the request
/// (points and kind) with its texts and the reviewer's name of the settings. The keyword text goes to the
/// phrase bank. A sketch made in the editor lies in `sketch`, which must live until the mark is made. None
/// when the editor is cancelled or the drawing is closed meanwhile, or when the drawing has no number left
/// for a mark (then with a printed line, and without opening the editor).
std::optional<NewMark> askOpinion(NewMark request, InkSketch &sketch, const QString &keywordText = {});
/// A null id, with a printed line, when the drawing refuses the mark.
AcDbObjectId makeMark(const NewMark &request);
/// Both: a null id also when there is nothing to make.
AcDbObjectId makeMarkFromEditor(const NewMark &request, const QString &keywordText = {});

/// Command: pick a mark and edit it.
void QN3_QNeditMark();
/// Opens the editor on a mark's opinion and stores what was confirmed. Asks for the password of a protected
/// mark. Other entities are left alone.
void editMark(AcDbObjectId id);
