// Sections that are framed by sentinels, with their size and their checksum: variables and classes.
#pragma once

#include "host/formats/dwg/dwgbitwriter.h"
#include "host/formats/dwg/dwgcontainer.h"
#include "host/formats/dwg/dwgobject.h"

namespace dwg
{

/// A section that is framed by sentinels, with its size and its checksum; empty when it is damaged beyond
/// use. What is wrong is told in the container's warnings.
std::string_view framedSection(Container &container, const QByteArray &name, std::string_view sentinel);

/// The streams of a section that begins, since AC1021, with its size in bits.
struct SectionStreams {
    Bits data, texts, handles;
    std::size_t dataEnd = 0; ///< Where the texts or the handles begin.
    std::size_t textsEnd = 0;

    QString text(const FileFacts &facts); ///< TV or TU
};
SectionStreams sectionStreams(const FileFacts &facts, std::string_view section);

/// A framed section again: what was read of the old one is copied, or something else put in its place.
class SectionEditor
{
public:
    /// `section` is the whole of it, from its sentinel on.
    SectionEditor(const FileFacts &facts, const Container &container, std::string_view section);

    bool good() const { return m_good && !in.data.failed() && !in.texts.failed() && !in.handles.failed(); }
    /// What was read since the last copy() or skip() goes over as it stands.
    void copy();
    void skip();
    void putText(const QString &text);
    void putHandle(int code, std::uint64_t handle);
    /// Puts another handle in the place of the one that was read since, as the same kind of reference.
    void replaceHandle(std::uint64_t handle);

    /// The whole section; all that was not read is copied.
    QByteArray finish();

    SectionStreams in;
    BitWriter data;

private:
    const FileFacts &m_facts;
    std::string_view m_section;
    std::size_t m_head = 0; ///< Of the size, behind the sentinel.
    std::string_view m_content;
    std::string_view m_behind; ///< From the checksum's end on.
    BitWriter m_texts, m_handles;
    std::size_t m_dataAt = 0, m_textsAt = 0, m_handlesAt = 0;
    std::size_t m_filling = 0; ///< Bits behind the last whole byte of what was read.
    bool m_good = false;
};

/// Texts, their length in bits, and whether there are any.
void appendTexts(const BitWriter &texts, BitWriter &out);

/// As a text of a record or section stands in the file, its NUL included.
QByteArray storedText(const FileFacts &facts, const QString &text);

} // namespace dwg
