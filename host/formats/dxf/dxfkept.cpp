#include "host/formats/dxf/dxfkept.h"

#include "host/formats/dxf/dxfencoder.h"
#include "host/formats/dxf/dxfscan.h"

#include <algorithm>
#include <utility>

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

void KeptText::endAt(std::uint64_t inText)
{
    const auto cut = std::ranges::lower_bound(lines, inText, {}, &Line::inText);
    std::vector<std::uint64_t> left;
    for (auto line = cut; line != lines.end(); ++line)
        left.push_back(line->inFile);
    std::erase_if(comments,
                  [&](const Place &comment) { return std::ranges::binary_search(left, comment.begin); });
    lines.erase(cut, lines.end());
    text.truncate(qsizetype(inText));
}

namespace
{

class KeptFinder
{
public:
    KeptFinder(std::string_view file, char lineEnd, const QByteArray &textLineEnd)
        : m_file(file), m_lineEnd(lineEnd), m_textLineEnd(textLineEnd)
    {
    }

    KeptText run()
    {
        for (std::size_t at = 0; at < m_file.size();) {
            const std::size_t end = std::min(m_file.find(m_lineEnd, at), m_file.size());
            std::string_view line = m_file.substr(at, end - at);
            if (line.ends_with('\r'))
                line.remove_suffix(1);
            const std::size_t next = std::min(end + 1, m_file.size());
            take(line, {at, next});
            m_before = {at, next};
            m_codeBefore = trimmed(line) == "999";
            at = next;
        }
        if (m_inFrame)
            noteDamage(m_kept.comments.back().begin);
        return std::move(m_kept);
    }

private:
    void take(std::string_view line, Place place)
    {
        const bool isComment = std::exchange(m_codeBefore, false);
        // A comment whose code is damaged still stands right behind the one before it.
        const bool followsOurs = m_inFrame && m_gap == 1;
        if (isComment && line == kFrameBegin) {
            m_unframed = {};
            m_kept.comments.push_back({m_before.begin, place.end});
            m_inFrame = true;
            m_gap = 0;
        } else if ((isComment || followsOurs) && line == kFrameEnd) {
            endFrame({m_before.begin, place.end});
        } else if ((isComment || followsOurs) && line.starts_with(kLineSign)) {
            KeptText &kept = m_inFrame ? m_kept : m_unframed;
            if (!isComment)
                noteDamage(m_before.begin);
            add(kept, line.substr(1), {m_before.begin, place.end});
            m_gap = 0;
        } else {
            // A code of somebody's comment tells no damage before its value is there, and its value none at
            // all.
            if (m_inFrame && !isComment && trimmed(line) != "999")
                m_stray = m_stray ? m_stray : place.begin;
            ++m_gap;
            return;
        }
        if (m_stray)
            noteDamage(*m_stray);
        m_stray.reset();
    }

    void add(KeptText &kept, std::string_view line, Place comment) const
    {
        kept.comments.push_back(comment);
        kept.lines.push_back({std::uint64_t(kept.text.size()), comment.begin});
        kept.text.append(line.data(), qsizetype(line.size()));
        kept.text.append(m_textLineEnd);
    }

    /// An end without a begin ends the lines that stand before it.
    void endFrame(Place comment)
    {
        if (!m_inFrame) {
            for (KeptText::Line line : m_unframed.lines)
                m_kept.lines.push_back({line.inText + std::uint64_t(m_kept.text.size()), line.inFile});
            m_kept.comments.insert(m_kept.comments.end(), m_unframed.comments.begin(),
                                   m_unframed.comments.end());
            m_kept.text.append(m_unframed.text);
            m_unframed = {};
            noteDamage(comment.begin);
        }
        m_kept.comments.push_back(comment);
        m_inFrame = false;
    }

    void noteDamage(std::uint64_t offset) { m_kept.damage = m_kept.damage.value_or(offset); }

    std::string_view m_file;
    char m_lineEnd;
    const QByteArray &m_textLineEnd;
    KeptText m_kept;
    KeptText m_unframed; ///< Lines that look like ours, outside of any frame.
    Place m_before;      ///< The line before.
    bool m_codeBefore = false;
    bool m_inFrame = false;
    int m_gap = 0; ///< Lines since the last that is ours.
    std::optional<std::uint64_t> m_stray;
};

} // namespace

KeptText findKept(std::string_view file, char lineEnd, const QByteArray &textLineEnd)
{
    if (file.find(kFrameBegin) == file.npos && file.find(kFrameEnd) == file.npos)
        return {};
    return KeptFinder(file, lineEnd, textLineEnd).run();
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
