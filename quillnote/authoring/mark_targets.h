// The commands that make a mark of two points or of a sketch: around a rectangle, at the end of a leader,
// over what is visible.
#pragma once

#include "host/acge/gepoint.h"

/// Command: pick a rectangle, type the opinion, make the mark.
void QN3_Quillnote();
/// Command: pick the leader from the target to where the text goes, type the opinion, make the mark. Takes no
/// snapshot.
void QN3_QuillnoteLeader();
/// Command: lets the user sketch over the drawing window and makes a mark of what was drawn. Without the ink
/// library the mark is made all the same; it holds no sketch.
void QN3_EasyDraw();

/// Object snap, highlighting and echo are off while this lives. Their values wait in the settings store.
class PickVariables
{
public:
    PickVariables();
    ~PickVariables();
    PickVariables(const PickVariables &) = delete;
    PickVariables &operator=(const PickVariables &) = delete;
};

enum class PickMode { rectangle, leader };
/// Asks for two points; world coordinates, z 0. In rectangle mode A is the lower-left and B the
/// upper-right corner as the user sees them; in leader mode A is the leader's start and B its end. False
/// when the user cancels, with a printed line.
bool pickMarkPoints(AcGePoint3d &a, AcGePoint3d &b, PickMode mode);
