// A picture of two drawings on each other: red what only the old one has, green what only the new one has,
// grey what both have.
#pragma once

#include "quillnote/aids/drawing_difference.h"

#include "host/base/result.h"

#include <QString>

/// Writes everything that both spaces show, with numbered frames around the differing places, as PNG or as
/// PDF (A3), by the ending of the name. An existing file is replaced once the picture is complete. The error
/// is a sentence.
base::Result<void, QString> writeDifferencePicture(const ComparedSpace &old, const ComparedSpace &now,
                                                   const DrawingDifference &difference, const QString &path);
