// The fingerprint of a target area: how many entities cross it and a checksum of their data. It tells later
// whether the area was changed; colours do not count.
#pragma once

#include "quillnote/entity/mark_outline.h"

#include "host/acdb/resbuf.h"

#include <QString>

#include <cstdint>
#include <vector>

struct TargetFingerprint {
    std::vector<AcDbObjectId> ids; ///< What crosses the target, in the order of the selection.
    QString note;                  ///< Empty.
    QString checksum;              ///< "SUM=12345"; empty when nothing crosses the target.

    bool isFound() const { return !ids.empty(); }
};

/// Of a target (world), along its own sides however it is seen, in the current space of the current drawing.
/// Review marks never count, nor does what cannot be seen.
TargetFingerprint computeTargetFingerprint(const MarkCorners &target);

/// The text of an entity's data list that the checksum counts: "(code,value)" of each group of 0 to 99 but
/// the colour.
QString fingerprintText(const ResbufList &data);
/// Code units added up, in 32 bits with sign.
std::int32_t fingerprintSum(const QString &text, std::int32_t sum = 0);
