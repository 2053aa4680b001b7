// The number flag of a mark: a pennant with the mark's number in it, coloured by the handling status.
#pragma once

#include "quillnote/entity/mark_text_layout.h"

#include <array>
#include <cstdint>

inline constexpr double kFlagHeight = 1.2; ///< In sizes of the flag.

struct MarkFlag {
    /// Closed: from the anchor along the top to the free end with its notch, and back below.
    std::array<AcGePoint3d, 5> outline;
    int fillColor = 1; ///< Colour indexes.
    int numberColor = 2;
    MarkTextLine number;
};

/// The font of numbers in flags.
const AcGiTextStyle &markNumberStyle();

/// Where a flag hangs and how large it is: it is twice its size long and 1.2 times its size high.
MarkFlag makeMarkFlag(const AcGePoint3d &anchor, double size, const MarkAxes &axes, const QString &number,
                      std::int16_t feedbackType);
