// DxfSource: the bytes of an opened DXF file, and how its groups decode.
#pragma once

#include "host/base/file_bytes.h"
#include "host/base/text_codec.h"
#include "host/formats/dxf/dxflayout.h"
#include "host/formats/dxf/dxfscan.h"

class DxfSource : public DrawingSource
{
public:
    explicit DxfSource(base::FileBytes bytes);

    DrawingFormat format() const override
    {
        return m_binary ? DrawingFormat::dxfBinary : DrawingFormat::dxfText;
    }
    DrawingVersion version() const override { return m_version; }
    ResbufList read(const AcDbStub &stub) const override;

    std::string_view bytes() const { return m_bytes.view(); }
    std::string_view bytes(dxf::Place place) const
    {
        return bytes().substr(place.begin, place.end - place.begin);
    }
    /// True for views into this source: what may be written back as it is.
    bool holds(std::string_view part) const;
    /// Groups of any stretch of the file. In dimension styles group 5 is a text.
    ResbufList decode(std::string_view part, bool dimensionStyle = false) const;
    /// A string of the file, its escapes resolved.
    QString text(std::string_view bytes) const;
    /// Calls `visit(const dxf::Group &)` for each group of the stretch until it returns false.
    template <class Visit>
    void visitGroups(std::string_view part, Visit visit) const;

    const base::TextCodec &codec() const { return m_codec; }
    bool shortCodes() const { return m_shortCodes; }
    char lineEnd() const { return m_lineEnd; }
    const dxf::TextStyle &style() const { return m_style; }
    const dxf::Layout &layout() const { return m_layout; }

    /// For the reader: $ACADVER and $DWGCODEPAGE, empty when the file has none.
    void setVersion(std::string_view version, std::string_view codePage);
    dxf::Layout &editLayout() { return m_layout; }
    /// For the reader: learns the style from a stretch of ordinary groups.
    void learnStyle(std::string_view part);
    /// Where the groups begin: behind a byte-order mark or the sentinel.
    std::uint64_t contentBegin() const { return m_contentBegin; }

private:
    template <class Scanner>
    ResbufList decodeWith(Scanner scanner, bool dimensionStyle, std::size_t expectedGroups) const;
    resbuf::Value value(const dxf::Group &group, GroupKind kind) const;
    resbuf::Value binaryValue(const dxf::Group &group, GroupKind kind) const;

    base::FileBytes m_bytes;
    bool m_binary = false;
    bool m_shortCodes = false;
    char m_lineEnd = '\n';
    std::uint64_t m_contentBegin = 0;
    DrawingVersion m_version = DrawingVersion::r12;
    base::TextCodec m_codec;
    dxf::TextStyle m_style;
    dxf::Layout m_layout;
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
