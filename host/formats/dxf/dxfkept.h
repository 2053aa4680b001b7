// Sections that a file's version does not have, kept in comments: one comment (999) a line, right before the
// end of the file, where every other reader passes over them. docs/formats/dxf.md shows it.
#pragma once

#include "host/formats/dxf/dxflayout.h"

#include <string_view>
#include <vector>

namespace dxf
{

class Encoder;

/// What such comments hold, as ordinary DXF text.
struct KeptText {
    /// A line of the text: where it stands there, and where its comment stands in the file.
    struct Line {
        std::uint64_t inText;
        std::uint64_t inFile;
    };

    QByteArray text;
    std::vector<Place> comments; ///< The comments that hold the text, their frame included; in file order.
    std::vector<Line> lines;
    std::optional<std::uint64_t> damage; ///< Where in the file the frame is not as it was written.

    /// The comment that an offset of the text comes from.
    std::uint64_t placeInFile(std::uint64_t inText) const;
    /// Ends the text here. The comments of what stands behind are ours no more: they stay in the file as they
    /// are.
    void endAt(std::uint64_t inText);
};

/// True for the sections that files before R13 do not have.
bool standsInComments(QByteArrayView section);

/// Looks for the comments line by line, wherever in the file they stand and whatever stands around them.
/// Comments of others in between are passed over; without the frame's begin or end what is there is taken.
/// Lines that are no comments any more stay where they are. `textLineEnd` ends the lines of the text.
KeptText findKept(std::string_view file, char lineEnd, const QByteArray &textLineEnd);

/// Appends the comments for a text.
void appendKept(QByteArray &out, const Encoder &encoder, std::string_view text, char lineEnd);

} // namespace dxf
