// DxfSource: the bytes of an opened DXF file, and how its groups decode.
//
// Offsets count from the file's begin. From keptBegin() on, which is behind the file's end, they name the
// text that a file of R12 keeps in its comments.
#pragma once

#include "host/base/file_bytes.h"
#include "host/base/text_codec.h"
#include "host/formats/dxf/dxfkept.h"
#include "host/formats/dxf/dxflayout.h"
#include "host/formats/dxf/dxfscan.h"

#include <atomic>

class DxfSource : public DrawingSource
{
public:
    explicit DxfSource(base::FileBytes bytes);

    DrawingForm form() const override { return m_binary ? DrawingForm::dxfBinary : DrawingForm::dxfText; }
    DrawingVersion version() const override { return m_version; }
    ResbufList read(const AcDbStub &stub) const override;

    /// The whole file.
    std::string_view bytes() const override { return m_bytes.view(); }
    std::string_view bytes(dxf::Place place) const
    {
        const bool kept = place.begin >= keptBegin();
        return (kept ? keptText() : bytes())
            .substr(kept ? place.begin - keptBegin() : place.begin, place.end - place.begin);
    }
    std::string_view bytes(const AcDbStub &stub) const { return bytes({stub.begin, stub.begin + stub.size}); }
    /// Of a byte that this source holds.
    std::uint64_t offsetOf(const char *at) const;

    /// Sections that the file's version does not have stand in comments.
    bool keepsInComments() const { return !m_binary && m_version <= DrawingVersion::r12; }
    std::uint64_t keptBegin() const { return m_bytes.size() + 1; }
    std::uint64_t keptEnd() const { return keptBegin() + keptText().size(); }
    bool isKept(std::uint64_t offset) const { return offset >= keptBegin(); }
    const dxf::KeptText &kept() const { return m_kept; }
    std::string_view keptText() const { return {m_kept.text.constData(), std::size_t(m_kept.text.size())}; }
    /// True for views into this source: what may be written back as it is.
    bool holds(std::string_view part) const;
    /// Groups of any stretch of the file. In dimension styles group 5 is a text.
    ResbufList decode(std::string_view part, bool dimensionStyle = false) const;
    /// A string of the file, its escapes resolved.
    QString text(std::string_view bytes) const;
    /// Calls `visit(const dxf::Group &)` for each group of the stretch until it returns false.
    template <class Visit>
    void visitGroups(std::string_view part, Visit visit) const;

    /// How the strings of the file are read.
    const base::TextCodec &codec() const;
    /// How new strings are written: in the code page that the file names, as escapes where its strings are in
    /// another.
    base::TextCodec writingCodec() const;
    bool shortCodes() const { return m_shortCodes; }
    char lineEnd() const { return m_lineEnd; }
    const dxf::TextStyle &style() const { return m_style; }
    const dxf::Layout &layout() const { return m_layout; }

    /// For the reader: $ACADVER and $DWGCODEPAGE, empty when the file has none.
    void setVersion(std::string_view version, std::string_view codePage);
    dxf::Layout &editLayout() { return m_layout; }
    void setKept(dxf::KeptText kept) { m_kept = std::move(kept); }
    /// The kept text cannot be read from here on; that part stays in the file as it is.
    void endKeptAt(std::uint64_t offset) { m_kept.endAt(offset - keptBegin()); }
    /// A stretch of the file without the comments that hold the kept text.
    QByteArray withoutKept(std::string_view part) const;
    /// For the reader: learns the style from a stretch of ordinary groups.
    void learnStyle(std::string_view part);
    /// Where the groups begin: behind a byte-order mark or the sentinel.
    std::uint64_t contentBegin() const { return m_contentBegin; }

private:
    template <class Scanner>
    ResbufList decodeWith(Scanner scanner, bool dimensionStyle, std::size_t expectedGroups) const;
    resbuf::Value value(const dxf::Group &group, GroupKind kind) const;
    resbuf::Value binaryValue(const dxf::Group &group, GroupKind kind) const;
    bool isUtf8InFact() const;

    base::FileBytes m_bytes;
    bool m_binary = false;
    bool m_shortCodes = false;
    char m_lineEnd = '\n';
    std::uint64_t m_contentBegin = 0;
    DrawingVersion m_version = DrawingVersion::r12;
    base::TextCodec m_named; ///< What the file says. Since R2007 it is right.
    base::TextCodec m_utf8{"UTF-8"};
    enum class Encoding { undecided, named, utf8 };
    /// Decided from the bytes when the first string beyond ASCII is met, in any thread.
    mutable std::atomic<Encoding> m_encoding = Encoding::undecided;
    dxf::TextStyle m_style;
    dxf::Layout m_layout;
    dxf::KeptText m_kept;
};

template <class Visit>
void DxfSource::visitGroups(std::string_view part, Visit visit) const
{
    const auto visitAll = [&](auto scanner) {
        dxf::Group group;
        while (scanner.next(group) == dxf::Step::group && visit(std::as_const(group))) {
        }
    };
    if (m_binary)
        visitAll(dxf::BinaryScanner(part, m_shortCodes));
    else
        visitAll(dxf::TextScanner(part, m_lineEnd));
}
