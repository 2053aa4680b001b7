// Draws what layOutMark() found, into any drawing context.
#pragma once

#include "quillnote/entity/mark_layout.h"

#include "host/acgi/world_draw.h"

/// The pen has the mark's own traits: the text takes its colour from them. They are left as they were.
void drawMark(const MarkLayout &layout, const AcGiCommonDraw &context);
