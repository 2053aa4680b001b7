#include "host/acgi/text/font_face.h"

#include <QDirIterator>
#include <QGuiApplication>
#include <QStandardPaths>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H
#include FT_TRUETYPE_TABLES_H
#include FT_TRUETYPE_TAGS_H

#include <map>

namespace acgi
{

namespace
{

class FreeTypeFace : public FontFace
{
public:
    FreeTypeFace(FT_Face face, const QString &path) : m_face(face), m_path(path)
    {
        const QRectF capital = glyph(glyphIndex(U'H'), 1.0).outline.boundingRect();
        if (capital.bottom() > 0.1)
            m_capHeight = capital.bottom();
    }

    std::uint32_t glyphIndex(char32_t character) const override
    {
        return FT_Get_Char_Index(m_face, character);
    }
    Glyph glyph(std::uint32_t index, double emSize) const override;
    double capHeight() const override { return m_capHeight; }
    const QRawFont *rawFont() const override;

private:
    QByteArray header() const;
    QRawFont installedFont(double pixelSize) const;

    FT_Face m_face; // Lives as long as the process, as the fonts do.
    QString m_path;
    double m_capHeight = 0.7;
    mutable std::optional<QRawFont> m_rawFont;
};

/// Takes the contours of a glyph as a path.
struct OutlinePen {
    QPainterPath path;
    double scale;

    QPointF at(const FT_Vector *point) const { return {double(point->x) * scale, double(point->y) * scale}; }
    static OutlinePen &of(void *pen) { return *static_cast<OutlinePen *>(pen); }
    static int move(const FT_Vector *to, void *pen)
    {
        of(pen).path.closeSubpath();
        of(pen).path.moveTo(of(pen).at(to));
        return 0;
    }
    static int line(const FT_Vector *to, void *pen)
    {
        of(pen).path.lineTo(of(pen).at(to));
        return 0;
    }
    static int quadratic(const FT_Vector *control, const FT_Vector *to, void *pen)
    {
        of(pen).path.quadTo(of(pen).at(control), of(pen).at(to));
        return 0;
    }
    static int cubic(const FT_Vector *first, const FT_Vector *second, const FT_Vector *to, void *pen)
    {
        of(pen).path.cubicTo(of(pen).at(first), of(pen).at(second), of(pen).at(to));
        return 0;
    }
};

} // namespace

Glyph FreeTypeFace::glyph(std::uint32_t index, double emSize) const
{
    Glyph glyph;
    if (FT_Load_Glyph(m_face, index, FT_LOAD_NO_SCALE | FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP) != 0)
        return glyph;
    OutlinePen pen{{}, emSize / double(m_face->units_per_EM)};
    pen.path.setFillRule(Qt::WindingFill);
    glyph.advance = double(m_face->glyph->metrics.horiAdvance) * pen.scale;
    if (m_face->glyph->format != FT_GLYPH_FORMAT_OUTLINE)
        return glyph;
    static const FT_Outline_Funcs kFunctions = {
        OutlinePen::move, OutlinePen::line, OutlinePen::quadratic, OutlinePen::cubic, 0, 0};
    FT_Outline_Decompose(&m_face->glyph->outline, &kFunctions, &pen);
    pen.path.closeSubpath();
    glyph.outline = std::move(pen.path);
    return glyph;
}

/// The table with the checksum of the file, which tells faces apart.
QByteArray FreeTypeFace::header() const
{
    FT_ULong size = 0;
    if (FT_Load_Sfnt_Table(m_face, TTAG_head, 0, nullptr, &size) != 0)
        return {};
    QByteArray table(qsizetype(size), '\0');
    FT_Load_Sfnt_Table(m_face, TTAG_head, 0, reinterpret_cast<FT_Byte *>(table.data()), &size);
    return table;
}

/// The face as the window system finds it; invalid when it finds another one under that name.
QRawFont FreeTypeFace::installedFont(double pixelSize) const
{
    QFont font;
    font.setFamilies({QString::fromUtf8(m_face->family_name)});
    font.setBold(m_face->style_flags & FT_STYLE_FLAG_BOLD);
    font.setItalic(m_face->style_flags & FT_STYLE_FLAG_ITALIC);
    font.setPixelSize(int(pixelSize));
    font.setHintingPreference(QFont::PreferNoHinting);
    QRawFont found = QRawFont::fromFont(font);
    const QByteArray wanted = header();
    return !wanted.isEmpty() && found.fontTable("head") == wanted ? found : QRawFont();
}

const QRawFont *FreeTypeFace::rawFont() const
{
    if (!m_rawFont && qobject_cast<QGuiApplication *>(QCoreApplication::instance())) {
        constexpr double kPixelSize = 100.0; // Whoever paints scales it.
        // PDF files embed only faces whose file the window system knows. One that was read from a file
        // directly has no name there and comes out as outlines: right to look at, but not to be searched.
        m_rawFont = installedFont(kPixelSize);
        if (!m_rawFont->isValid())
            m_rawFont.emplace(m_path, kPixelSize, QFont::PreferNoHinting);
    }
    return m_rawFont && m_rawFont->isValid() ? &*m_rawFont : nullptr;
}

/// Path of a font file in the folders where fonts are installed; empty when it is nowhere.
static QString pathOfFont(const QString &fileName)
{
    QStringList folders = QStandardPaths::standardLocations(QStandardPaths::FontsLocation);
    folders += {QStringLiteral("/usr/share/fonts"), QStringLiteral("/usr/local/share/fonts")};
    for (const QString &folder : std::as_const(folders)) {
        QDirIterator files(folder, {fileName}, QDir::Files | QDir::Readable, QDirIterator::Subdirectories);
        if (files.hasNext())
            return files.next();
    }
    return {};
}

static std::unique_ptr<FontFace> loadFace(const char *fileName)
{
    static FT_Library library = nullptr;
    if (!library && FT_Init_FreeType(&library) != 0)
        return nullptr;
    const QString path = pathOfFont(QLatin1String(fileName));
    FT_Face face = nullptr;
    if (path.isEmpty() || FT_New_Face(library, path.toLocal8Bit().constData(), 0, &face) != 0)
        return nullptr;
    if (!FT_IS_SCALABLE(face) || face->units_per_EM == 0) {
        FT_Done_Face(face);
        return nullptr;
    }
    return std::make_unique<FreeTypeFace>(face, path);
}

const FontFace *FontFace::find(const char *fileName)
{
    // Never destroyed: static objects elsewhere may still show text when the program ends.
    static auto &faces = *new std::map<std::string, std::unique_ptr<FontFace>>;
    const auto [entry, isNew] = faces.try_emplace(fileName);
    if (isNew)
        entry->second = loadFace(fileName);
    return entry->second.get();
}

} // namespace acgi
