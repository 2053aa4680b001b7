#include "host/acgi/text/font.h"

#include "host/acgi/text/font_face.h"
#include "host/acgi/text/font_symbols.h"
#include "host/acgi/text/font_table.h"

#include <QHash>
#include <QTransform>

#include <algorithm>
#include <array>
#include <unordered_map>

namespace acgi
{

namespace
{

/// The em of ideographs in a shape font, where they are about as high as a capital letter.
constexpr double kStrokeIdeographEm = 1.2;

/// The characters of a font that were asked for, measured and outlined. Pages are never moved, so that
/// painters may read while the main thread adds characters.
class GlyphCache
{
public:
    explicit GlyphCache(const FontChoice &choice) : m_choice(choice)
    {
        const auto face = [](FontFamily family, bool bold, bool italic) {
            return FontFace::find(fontFileName(family, bold, italic));
        };
        m_face = face(choice.family, choice.bold, choice.italic);
        if (!m_face)
            m_face = face(choice.family, false, false);
        m_isFound = choice.isListed && m_face;
        m_fallback = face(FontFamily::cjk, false, false);
        if (!m_face)
            m_face = m_fallback;
        m_emSize = m_face ? 1.0 / m_face->capHeight() : 1.0;
        m_fallbackEmSize = !m_fallback       ? 1.0
                           : choice.isStroke ? kStrokeIdeographEm
                                             : 1.0 / m_fallback->capHeight();
    }

    const FontChoice &choice() const { return m_choice; }
    bool isFound() const { return m_isFound; }

    double advance(char32_t character) { return entry(character).glyph->advance; }

    PlacedGlyph placed(char32_t character, double x)
    {
        Entry &found = entry(character);
        // Text may have been measured before there was anything to paint with.
        if (!found.rawFont && found.face)
            found.rawFont = found.face->rawFont();
        return {found.glyph.get(), x + found.indent, found.rawFont,
                found.index,       found.emSize,     found.widthFactor};
    }

private:
    struct Entry {
        std::unique_ptr<Glyph> glyph;
        const FontFace *face = nullptr;
        const QRawFont *rawFont = nullptr;
        std::uint32_t index = 0;
        double emSize = 1.0;
        double widthFactor = 1.0;
        double indent = 0.0; ///< From where the character begins to where its glyph does.
    };
    static constexpr int kPageBits = 8;
    using Page = std::array<Entry, 1 << kPageBits>;

    Entry &entry(char32_t character)
    {
        std::unique_ptr<Page> &page =
            m_pages[std::min<std::size_t>(character >> kPageBits, m_pages.size() - 1)];
        if (!page)
            page = std::make_unique<Page>();
        Entry &found = (*page)[character & ((1 << kPageBits) - 1)];
        if (!found.glyph)
            fill(found, character);
        return found;
    }

    void fill(Entry &entry, char32_t character) const
    {
        if (m_choice.family == FontFamily::symbols && take(entry, toleranceGlyph(character)))
            return;
        if (use(entry, m_face, m_emSize, character)) {
            fitWidth(entry, character);
            return;
        }
        if (use(entry, m_fallback, m_fallbackEmSize, character) || take(entry, symbolGlyph(character)))
            return;
        take(entry, character < 0x20 ? Glyph() : missingGlyph());
    }

    static bool take(Entry &entry, std::optional<Glyph> glyph)
    {
        if (!glyph)
            return false;
        entry.glyph = std::make_unique<Glyph>(std::move(*glyph));
        return true;
    }

    static bool use(Entry &entry, const FontFace *face, double emSize, char32_t character)
    {
        // Line breaks within attributes and the like take no room; tabulators count as spaces.
        const char32_t shown = character == U'\t' ? U' ' : character;
        const std::uint32_t index = face && shown >= 0x20 ? face->glyphIndex(shown) : 0;
        if (index == 0)
            return false;
        entry.face = face;
        entry.index = index;
        entry.emSize = emSize;
        return take(entry, face->glyph(index, emSize));
    }

    /// Gives the character the width that it has in the font that is stood for: the glyph is stretched as far
    /// as letters can bear, and stands in the middle.
    void fitWidth(Entry &entry, char32_t character) const
    {
        constexpr double kNarrowest = 0.8;
        constexpr double kWidest = 1.2;
        Glyph &glyph = *entry.glyph;
        const std::optional<double> width = letterWidth(m_choice.letters, character);
        entry.widthFactor = width && glyph.advance > 0.0
                                ? std::clamp(*width / glyph.advance, kNarrowest, kWidest)
                                : m_choice.width;
        const double stretched = glyph.advance * entry.widthFactor;
        glyph.advance = width.value_or(stretched);
        entry.indent = (glyph.advance - stretched) / 2.0;
        glyph.outline = QTransform::fromScale(entry.widthFactor, 1.0).map(glyph.outline);
    }

    static Glyph missingGlyph()
    {
        Glyph glyph;
        glyph.advance = 0.9;
        glyph.outline.addRect(0.1, 0.0, 0.7, 1.0);
        QPainterPath hole;
        hole.addRect(0.18, 0.08, 0.54, 0.84);
        glyph.outline.addPath(hole.toReversed());
        glyph.outline.setFillRule(Qt::WindingFill);
        return glyph;
    }

    FontChoice m_choice;
    const FontFace *m_face = nullptr;
    const FontFace *m_fallback = nullptr;
    bool m_isFound = false;
    double m_emSize = 1.0;
    double m_fallbackEmSize = 1.0;
    static constexpr std::size_t kPageCount = 0x110000 >> kPageBits;
    std::array<std::unique_ptr<Page>, kPageCount> m_pages;
};

/// Calls `use` for each character, surrogates joined.
template <class Use>
void forEachCharacter(QStringView text, Use use)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate())
            use(QChar::surrogateToUcs4(c, text[++i]));
        else
            use(char32_t(c.unicode()));
    }
}

class CachedFont : public Font
{
public:
    CachedFont(const FontRequest &request, GlyphCache &glyphs) : m_request(request), m_glyphs(glyphs) {}

    bool isFound() const override { return m_glyphs.isFound(); }
    const FontRequest &request() const override { return m_request; }

    double width(QStringView text) const override
    {
        double width = 0.0;
        forEachCharacter(text, [&](char32_t character) { width += m_glyphs.advance(character); });
        return width;
    }

    void layOut(QStringView text, std::vector<PlacedGlyph> &glyphs) const override
    {
        glyphs.clear();
        double x = 0.0;
        forEachCharacter(text, [&](char32_t character) {
            glyphs.push_back(m_glyphs.placed(character, x));
            x += glyphs.back().glyph->advance;
        });
    }

private:
    FontRequest m_request;
    GlyphCache &m_glyphs;
};

struct RequestHash {
    std::size_t operator()(const FontRequest &request) const
    {
        return qHashMulti(0, request.fontFile, request.bigFontFile, request.typeface, request.bold,
                          request.italic);
    }
};

/// Fonts by what they were asked for. Drawings name many fonts, but few faces stand for them.
class FontRegistry
{
public:
    static FontRegistry &instance()
    {
        // Never destroyed, as fonts are told apart by their addresses.
        static auto &registry = *new FontRegistry;
        return registry;
    }

    const Font &font(const FontRequest &request)
    {
        const auto known = m_fonts.find(request);
        if (known != m_fonts.end())
            return *known->second;
        return *m_fonts.emplace(request, std::make_unique<CachedFont>(request, glyphs(chooseFont(request))))
                    .first->second;
    }

private:
    GlyphCache &glyphs(const FontChoice &choice)
    {
        for (const auto &each : m_glyphs) {
            if (each->choice() == choice)
                return *each;
        }
        return *m_glyphs.emplace_back(std::make_unique<GlyphCache>(choice));
    }

    std::vector<std::unique_ptr<GlyphCache>> m_glyphs;
    std::unordered_map<FontRequest, std::unique_ptr<CachedFont>, RequestHash> m_fonts;
};

} // namespace

const Font &findFont(const FontRequest &request)
{
    return FontRegistry::instance().font(request);
}

const Font &defaultFont()
{
    static const Font &font = findFont(FontRequest());
    return font;
}

} // namespace acgi
