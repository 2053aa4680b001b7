#include "host/acgi/text/font_table.h"

#include <algorithm>

namespace acgi
{

namespace
{

struct FontRow {
    QStringView name; ///< Typeface, or file without its extension; lower case.
    FontFamily family;
    bool bold = false; ///< Whatever is asked for besides.
    bool italic = false;
};

} // namespace

using enum FontFamily;

// Shape fonts are here only when they are not plain stroke letters. See docs/decisions/0010-fonts.md.
static constexpr FontRow kFonts[] = {
    // Shape fonts
    {u"monotxt", mono},
    {u"romant", serif},
    {u"complex", serif},
    {u"romanc", serif},
    {u"italict", serif},
    {u"italicc", serif},
    {u"gdt", symbols},
    {u"amgdt", symbols},
    {u"amgdtans", symbols},
    // Latin typefaces and their files
    {u"arial", sans},
    {u"arialbd", sans, true},
    {u"ariali", sans, false, true},
    {u"arialbi", sans, true, true},
    {u"arial narrow", sans},
    {u"arialn", sans},
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
    {u"txt", sans},
    {u"romans", sans},
    {u"simplex", sans},
    {u"times new roman", serif},
    {u"times", serif},
    {u"timesbd", serif, true},
    {u"timesi", serif, false, true},
    {u"timesbi", serif, true, true},
    {u"liberation serif", serif},
    {u"georgia", serif},
    {u"cambria", serif},
    {u"garamond", serif},
    {u"courier new", mono},
    {u"courier", mono},
    {u"cour", mono},
    {u"courbd", mono, true},
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
    const FontRow *const row = rowOf(name);
    if (row) {
        choice.family = row->family;
        choice.bold = choice.bold || row->bold;
        choice.italic = choice.italic || row->italic;
    }
    choice.isListed = row || choice.isStroke;
    return choice;
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
