// Freehand marks: a sketch over the visible part of the drawing, made with the ink library.
#pragma once

/// Command: lets the user sketch over the drawing window and makes a mark of what was drawn. Without the
/// library the mark is made all the same; it holds no sketch.
void QN3_EasyDraw();
