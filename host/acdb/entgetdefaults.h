// What data lists of entities show of groups at their defaults.
//
// A file may write a group whose value is the default or leave it out; the platform's lists do not tell
// which. Each group of the common kinds is listed always, listed only when it differs from its default, or
// listed when given, and stands at one place. These habits stand with the kinds (kinds/).
#pragma once

#include "host/acdb/dbid.h"
#include "host/acdb/resbuf.h"

/// `content` is what stands behind the marker "AcDbEntity" of an entity, without 67, 410 and extended data,
/// angles in radians. Two contents that mean the same come out equal, markers and order included. The
/// layer and the display properties are settled for every kind, the rest for kinds of the table; what the
/// table does not know stays behind the group that it followed.
void acdbSettleDefaults(AcDbKind kind, ResbufList &content);
