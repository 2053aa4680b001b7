#include "host/acgi/text/font_table.h"

#include <algorithm>
#include <string_view>

namespace acgi
{

namespace
{

struct FontRow {
    QStringView name; ///< Typeface, or file without its extension; lower case.
    FontFamily family;
    bool bold = false; ///< Whatever is asked for besides.
    bool italic = false;
    LetterWidths letters = LetterWidths::ofFace;
    double width = 1.0; ///< Of the letters of the face.
};

} // namespace

using enum FontFamily;

// Faces are as high as their capitals here, and those of the metrically equal fonts have higher ones.
static constexpr double kArial = 1409.0 / 1466.0;
static constexpr double kArialNarrow = 0.82 * kArial;
static constexpr double kCourier = 1349.0 / 1170.0;

// Shape fonts are here only when they are not plain stroke letters. See docs/decisions/0010-fonts.md for the
// faces and 0083-letter-widths.md for the widths.
static constexpr FontRow kFonts[] = {
    // Shape fonts
    {.name = u"txt", .family = sans, .letters = LetterWidths::even},
    {.name = u"monotxt", .family = mono, .letters = LetterWidths::one},
    {.name = u"romant", .family = serif, .letters = LetterWidths::serif},
    {.name = u"complex", .family = serif, .letters = LetterWidths::serif},
    {.name = u"romanc", .family = serif, .letters = LetterWidths::serif},
    {.name = u"italict", .family = serif, .letters = LetterWidths::serif},
    {.name = u"italicc", .family = serif, .letters = LetterWidths::serif},
    {u"gdt", symbols},
    {u"amgdt", symbols},
    {u"amgdtans", symbols},
    // Latin typefaces and their files
    {.name = u"arial", .family = sans, .width = kArial},
    {.name = u"arialbd", .family = sans, .bold = true, .width = kArial},
    {.name = u"ariali", .family = sans, .italic = true, .width = kArial},
    {.name = u"arialbi", .family = sans, .bold = true, .italic = true, .width = kArial},
    {.name = u"arial narrow", .family = sans, .width = kArialNarrow},
    {.name = u"arialn", .family = sans, .width = kArialNarrow},
    {u"arial black", sans, true},
    {u"ariblk", sans, true},
    {u"helvetica", sans},
    {u"liberation sans", sans},
    {u"liberationsans-regular", sans},
    {u"verdana", sans},
    {u"tahoma", sans},
    {u"calibri", sans},
    {u"segoe ui", sans},
    {u"segoeui", sans},
    {u"century gothic", sans},
    {u"gothic", sans},
    {u"isocpeur", sans},
    {u"isocp", sans},
    {u"isocteur", mono},
    {u"times new roman", serif},
    {u"times", serif},
    {u"timesbd", serif, true},
    {u"timesi", serif, false, true},
    {u"timesbi", serif, true, true},
    {u"liberation serif", serif},
    {u"georgia", serif},
    {u"cambria", serif},
    {u"garamond", serif},
    {.name = u"courier new", .family = mono, .width = kCourier},
    {.name = u"courier", .family = mono, .width = kCourier},
    {.name = u"cour", .family = mono, .width = kCourier},
    {.name = u"courbd", .family = mono, .bold = true, .width = kCourier},
    {u"consolas", mono},
    {u"consola", mono},
    {u"lucida console", mono},
    {u"lucon", mono},
    {u"liberation mono", mono},
    {u"monospac821 bt", mono},
    // CJK typefaces and their files
    {u"simsun", cjk},
    {u"nsimsun", cjk},
    {u"simsunb", cjk},
    {u"\u5B8B\u4F53", cjk},
    {u"\u65B0\u5B8B\u4F53", cjk},
    {u"simhei", cjk},
    {u"\u9ED1\u4F53", cjk},
    {u"simkai", cjk},
    {u"kaiti", cjk},
    {u"kaiti_gb2312", cjk},
    {u"\u6977\u4F53", cjk},
    {u"\u6977\u4F53_gb2312", cjk},
    {u"simfang", cjk},
    {u"fangsong", cjk},
    {u"fangsong_gb2312", cjk},
    {u"\u4EFF\u5B8B", cjk},
    {u"\u4EFF\u5B8B_gb2312", cjk},
    {u"simli", cjk},
    {u"lisu", cjk},
    {u"\u96B6\u4E66", cjk},
    {u"simyou", cjk},
    {u"youyuan", cjk},
    {u"\u5E7C\u5706", cjk},
    {u"stsong", cjk},
    {u"\u534E\u6587\u5B8B\u4F53", cjk},
    {u"stfangso", cjk},
    {u"stfangsong", cjk},
    {u"\u534E\u6587\u4EFF\u5B8B", cjk},
    {u"stxihei", cjk},
    {u"\u534E\u6587\u7EC6\u9ED1", cjk},
    {u"msyh", cjk},
    {u"msyhbd", cjk, true},
    {u"microsoft yahei", cjk},
    {u"\u5FAE\u8F6F\u96C5\u9ED1", cjk},
    {u"dengxian", cjk},
    {u"deng", cjk},
    {u"\u7B49\u7EBF", cjk},
    {u"mingliu", cjk},
    {u"pmingliu", cjk},
    {u"\u7D30\u660E\u9AD4", cjk},
    {u"\u65B0\u7D30\u660E\u9AD4", cjk},
    {u"ms gothic", cjk},
    {u"msgothic", cjk},
    {u"ms mincho", cjk},
    {u"msmincho", cjk},
    {u"gulim", cjk},
    {u"batang", cjk},
    {u"arial unicode ms", cjk},
    {u"arialuni", cjk},
    {u"wenquanyi zen hei", cjk},
    {u"wqy-zenhei", cjk},
};

static const FontRow *rowOf(QStringView name)
{
    const auto row = std::ranges::find_if(
        kFonts, [=](const FontRow &each) { return each.name.compare(name, Qt::CaseInsensitive) == 0; });
    return row == std::end(kFonts) ? nullptr : &*row;
}

/// Without folder and the mark of vertical writing.
static QStringView bareName(QStringView name)
{
    name = name.trimmed();
    const qsizetype folder = std::max(name.lastIndexOf(u'/'), name.lastIndexOf(u'\\'));
    name = name.mid(folder + 1);
    return name.startsWith(u'@') ? name.mid(1) : name;
}

static bool hasOutlineExtension(QStringView name)
{
    const auto ends = [=](QStringView extension) { return name.endsWith(extension, Qt::CaseInsensitive); };
    return ends(u".ttf") || ends(u".ttc") || ends(u".otf");
}

FontChoice chooseFont(const FontRequest &request)
{
    FontChoice choice;
    choice.bold = request.bold;
    choice.italic = request.italic;
    const bool byTypeface = !request.typeface.trimmed().isEmpty();
    QStringView name = bareName(byTypeface ? request.typeface : request.fontFile);
    choice.isStroke = !byTypeface && !hasOutlineExtension(name);
    if (!choice.isStroke && !byTypeface)
        name.chop(4);
    else if (name.endsWith(u".shx", Qt::CaseInsensitive))
        name.chop(4);
    const FontRow *const row = rowOf(choice.isStroke && name.isEmpty() ? u"txt" : name);
    if (row) {
        choice.family = row->family;
        choice.bold = choice.bold || row->bold;
        choice.italic = choice.italic || row->italic;
        choice.letters = row->letters;
        choice.width = row->width;
    } else if (choice.isStroke) {
        choice.letters = LetterWidths::plain;
    }
    choice.isListed = row || choice.isStroke;
    return choice;
}

// Advances of the characters from the blank on, where a capital is 21 high.
static constexpr std::uint8_t kPlainWidths[] = {
    16, 10, 16, 21, 20, 24, 26, 10, 14, 14, 16, 26, 10, 26, 10, 22, 20, 20, 20, 20, 20, 20, 20, 20,
    20, 20, 10, 10, 24, 26, 24, 18, 27, 18, 21, 21, 21, 19, 18, 21, 22, 8,  16, 21, 17, 24, 22, 22,
    21, 22, 21, 20, 16, 22, 18, 24, 20, 18, 20, 14, 14, 14, 16, 16, 10, 19, 19, 18, 19, 18, 12, 19,
    19, 8,  10, 17, 8,  30, 19, 19, 19, 19, 13, 17, 12, 19, 16, 22, 17, 16, 17, 14, 8,  14, 24};
static constexpr std::uint8_t kSerifWidths[] = {
    16, 10, 18, 21, 20, 24, 25, 8,  14, 14, 16, 26, 8,  26, 8,  22, 20, 20, 20, 20, 20, 20, 20, 20,
    20, 20, 8,  8,  24, 26, 24, 18, 27, 20, 22, 21, 22, 21, 20, 23, 24, 11, 15, 22, 18, 25, 23, 22,
    22, 22, 22, 20, 19, 24, 20, 24, 20, 21, 20, 14, 14, 14, 22, 20, 12, 20, 21, 19, 21, 19, 13, 19,
    22, 11, 11, 21, 11, 33, 22, 20, 21, 20, 17, 17, 15, 22, 18, 24, 20, 19, 18, 14, 8,  14, 24};

/// In sixths of the height.
static int evenWidth(char32_t character)
{
    constexpr std::u32string_view kHalf = U"il,.:;!|\'";
    constexpr std::u32string_view kTwoThirds = U"I()[]";
    constexpr std::u32string_view kFiveSixths = U"jt";
    return kHalf.find(character) != kHalf.npos               ? 3
           : kTwoThirds.find(character) != kTwoThirds.npos   ? 4
           : kFiveSixths.find(character) != kFiveSixths.npos ? 5
                                                             : 6;
}

std::optional<double> letterWidth(LetterWidths letters, char32_t character)
{
    constexpr double kCapital = 21.0;
    if (letters == LetterWidths::ofFace)
        return std::nullopt;
    if (character > 0x7E && character < 0x10000) { // An accent makes no letter wider.
        const QString parts = QChar::decomposition(character);
        character = parts.isEmpty() ? character : parts.front().unicode();
    }
    if (character < 0x20 || character > 0x7E)
        return std::nullopt;
    switch (letters) {
    case LetterWidths::plain:
        return kPlainWidths[character - 0x20] / kCapital;
    case LetterWidths::serif:
        return kSerifWidths[character - 0x20] / kCapital;
    case LetterWidths::even:
        return evenWidth(character) / 6.0;
    default:
        return 1.0;
    }
}

const char *fontFileName(FontFamily family, bool bold, bool italic)
{
    static constexpr const char *kFiles[][4] = {
        {"LiberationSans-Regular.ttf", "LiberationSans-Bold.ttf", "LiberationSans-Italic.ttf",
         "LiberationSans-BoldItalic.ttf"},
        {"LiberationSerif-Regular.ttf", "LiberationSerif-Bold.ttf", "LiberationSerif-Italic.ttf",
         "LiberationSerif-BoldItalic.ttf"},
        {"LiberationMono-Regular.ttf", "LiberationMono-Bold.ttf", "LiberationMono-Italic.ttf",
         "LiberationMono-BoldItalic.ttf"},
    };
    if (family == cjk)
        return "wqy-zenhei.ttc";
    const int style = (bold ? 1 : 0) + (italic ? 2 : 0);
    return kFiles[family == symbols ? int(sans) : int(family)][style];
}

} // namespace acgi
