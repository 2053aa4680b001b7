// Golden pictures: a space of a drawing, painted and compared with a PNG that is kept under tests/.
//
// On a difference the new picture and one that shows where they differ (red on the faded reference) are kept
// in the build tree, under tests/out/. References are written only when QUILL_UPDATE_GOLDEN=1 asks for it.
#pragma once

#include "host/acgi/display/display.h"

#include <gtest/gtest.h>

#include <QImage>

namespace tests
{

/// A plan view of `width` by `height` pixels, from its lower left corner.
AcGiViewport planView(double x, double y, int width, int height, double pixelsPerUnit = 1.0);

struct Picture {
    QImage image;
    acgi::PaintReport report;
};
/// On white, as on the screen.
Picture paintPicture(AcDbObjectId space, const AcGiViewport &view, acgi::PaintOptions options = {});

/// Two pixels differ when a channel differs by more than this; letters are smoothed a little differently
/// by other versions of the libraries.
inline constexpr int kChannelTolerance = 48;
/// This share of the pixels may differ: less than one digit in a flag.
inline constexpr double kPixelTolerance = 0.0002;

/// Pixels that differ; every pixel of the larger picture when the sizes are not the same.
qsizetype differingPixels(const QImage &a, const QImage &b);
/// `reference` is a path under tests/ that ends in ".png". A missing reference is a failure.
testing::AssertionResult matchesPicture(const QImage &picture, const QString &reference);

} // namespace tests
