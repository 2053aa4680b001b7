// EncodingVote: whether a file is UTF-8 although it names an older code page, decided from all its strings.
//
// Many writers leave an old code page in the header of a UTF-8 file. One string alone cannot say so: the
// bytes of "Ø½" (1252), "К–1" (1251) or a Chinese name (936) are sound UTF-8 by chance. So each string of the
// file has a vote, and the whole file is read in one way.
#pragma once

#include "host/base/text_codec.h"

namespace base
{

class EncodingVote
{
public:
    explicit EncodingVote(const TextCodec &named) : m_named(named) {}

    /// One string as it stands in the file; plain ASCII has no vote.
    void string(std::string_view bytes);
    /// Each line of a text.
    void lines(std::string_view text);

    /// More strings that are UTF-8 than ones that cannot be. Strings that may be either do not count: without
    /// any other vote the file is what it says it is.
    bool isUtf8() const { return m_for > m_against; }

private:
    enum class Verdict { either, utf8, notUtf8 };
    Verdict verdict(std::string_view bytes) const;

    TextCodec m_named;
    std::size_t m_for = 0;
    std::size_t m_against = 0;
};

} // namespace base
