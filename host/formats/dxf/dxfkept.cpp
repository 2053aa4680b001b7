#include "host/formats/dxf/dxfkept.h"

#include "host/formats/dxf/dxfencoder.h"
#include "host/formats/dxf/dxfscan.h"

#include <algorithm>

namespace dxf
{

static constexpr int kComment = 999;
static constexpr std::string_view kFrameBegin = "QUILLNOTE SECTIONS 1";
static constexpr std::string_view kFrameEnd = "QUILLNOTE END";
static constexpr char kLineSign = '|'; ///< Begins each kept line, so that its leading blanks survive.

bool standsInComments(QByteArrayView section)
{
    return section == QByteArrayView("CLASSES") || section == QByteArrayView("OBJECTS");
}

std::uint64_t KeptText::placeInFile(std::uint64_t inText) const
{
    const auto behind = std::ranges::upper_bound(lines, inText, {}, &Line::inText);
    return behind == lines.begin() ? 0 : (behind - 1)->inFile;
}

KeptText findKept(std::string_view file, Place part, char lineEnd, const QByteArray &textLineEnd)
{
    KeptText kept;
    bool inFrame = false;
    TextScanner scanner(file.substr(part.begin, part.end - part.begin), lineEnd);
    Group group;
    while (scanner.next(group) == Step::group) {
        const bool begins = group.code == kComment && group.value == kFrameBegin;
        const bool ends = inFrame && group.code == kComment && group.value == kFrameEnd;
        const bool isLine = inFrame && group.code == kComment && group.value.starts_with(kLineSign);
        if (!begins && !ends && !isLine)
            continue;
        const auto begin = std::uint64_t(group.begin - file.data());
        kept.comments.push_back({begin, begin + std::uint64_t(group.end - group.begin)});
        if (isLine) {
            kept.lines.push_back({std::uint64_t(kept.text.size()), begin});
            kept.text.append(group.value.data() + 1, qsizetype(group.value.size() - 1));
            kept.text.append(textLineEnd);
        }
        inFrame = !ends;
    }
    if (inFrame)
        kept.damage = kept.comments.back().begin;
    return kept;
}

static QByteArrayView viewOf(std::string_view text)
{
    return {text.data(), qsizetype(text.size())};
}

void appendKept(QByteArray &out, const Encoder &encoder, std::string_view text, char lineEnd)
{
    encoder.plainText(out, kComment, viewOf(kFrameBegin));
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(lineEnd), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        encoder.plainText(out, kComment, kLineSign + viewOf(line).toByteArray());
    }
    encoder.plainText(out, kComment, viewOf(kFrameEnd));
}

} // namespace dxf
