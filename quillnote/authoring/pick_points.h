// Picking of the two points that a mark begins with.
#pragma once

#include "host/acge/gepoint.h"

enum class PickMode { rectangle, leader };

/// Object snap, highlighting and echo are off while this lives. Their values wait in the settings store.
class PickVariables
{
public:
    PickVariables();
    ~PickVariables();
    PickVariables(const PickVariables &) = delete;
    PickVariables &operator=(const PickVariables &) = delete;
};

/// Asks for two points; world coordinates, z 0. In rectangle mode A is the lower-left and B the
/// upper-right corner as the user sees them; in leader mode A is the leader's start and B its end. False
/// when the user cancels, with a printed line.
bool pickMarkPoints(AcGePoint3d &a, AcGePoint3d &b, PickMode mode);
