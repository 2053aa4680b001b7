// The table of every setting: name, type, range and meaning. Code reads and writes settings by these rows
// (settings.h), and `quillnote settings set` knows their types from them. A new setting gets its row here.
#pragma once

#include <QStringView>

#include <array>
#include <concepts>
#include <limits>

namespace settings
{

inline constexpr QStringView kKey = u"Software\\Quillnote3";
inline constexpr QStringView kTemplateKey = u"Software\\Quillnote3\\Templete";

enum class Kind { number, text };

struct Range {
    int low = std::numeric_limits<int>::min();
    int high = std::numeric_limits<int>::max();
    int otherwise = 0; ///< What a number outside, and one that was never stored, reads as.
};

struct Indexes {
    int first = 0;
    int last = 0;
};

/// One setting, or a numbered row of settings.
struct Row {
    QStringView name; ///< A name with "%d" stands for the numbers of `indexes`.
    Kind kind;
    Range range; ///< Of a number.
    QStringView meaning;
    QStringView key = kKey;
    Indexes indexes{};
};

namespace table
{

inline constexpr Kind N = Kind::number;
inline constexpr Kind T = Kind::text;
inline constexpr int kMost = std::numeric_limits<int>::max();
inline constexpr Range kAny{};
inline constexpr Range kColors{1, 255, 2};

// clang-format off
inline constexpr std::array kRows = std::to_array<Row>({
    // Display and drawing
    {u"style", N, {-6, 6, 0}, u"target outline of new marks"},
    {u"BKstyle", N, {99, 105, 103}, u"flag or text-box frame of new marks"},
    {u"color1", N, kColors, u"first colour of new marks"},
    {u"color2", N, kColors, u"second colour of new marks; a mark made without the settings takes 5"},
    {u"textHeight", N, {1, kMost, 1000}, u"text height of new marks in model space; without one each drawing has a height that suits it"},
    {u"textHeightPS", N, {1, kMost, 10}, u"text height of new marks in paper space"},
    {u"autoTargetTxtH", N, kAny, u"text height follows the target: 0 or more on, -1 off"},
    {u"autoFlagSize", N, kAny, u"flag size follows the view: 1 on, -1 or 0 off"},
    {u"applyAll", N, kAny, u"1: all marks are drawn with the configured height and first colour, not their own"},
    {u"NoDisplayText", N, kAny, u"1: the text is not shown below the target"},
    {u"viewDateTime", N, kAny, u"1: marks show their date"},
    {u"viewName", N, kAny, u"1: marks show the reviewer"},
    {u"viewFlag", N, kAny, u"1: marks show their flag and number"},
    {u"DisplayFlagWithFreehandDraw", N, kAny, u"1: freehand marks show their flag too"},
    {u"TextStyle", N, kAny, u"1: mark text in a TrueType font, else in shape fonts"},
    {u"ChineseVersion", N, kAny, u"not 0: the password prompt speaks Chinese, else English"},

    // Behaviour
    {u"doubleClick", N, kAny, u"double-click on a mark: 0 edits it, 1 does nothing, 2 opens the palette"},
    {u"autoFlagRefresh", N, kAny, u"above 0: flags are refreshed while zooming"},
    {u"SnapRecord", N, kAny, u"not 0: a picture of the whole view is taken with each new mark"},
    {u"SnapReview", N, kAny, u"not 0: the palette shows the picture of the whole view"},
    {u"useLayer", N, kAny, u"1: marks go to the layer LayerName"},
    {u"LayerName", T, kAny, u"layer for marks"},
    {u"noPlotLayer", N, kAny, u"1: the mark layer does not plot"},
    {u"name", T, kAny, u"name of the reviewer, stamped into new marks"},
    {u"chPwMD5", T, kAny, u"hash of the password of new marks, 32 hexadecimal digits; empty for none"},
    {u"viewScale", N, {30, 90, 50}, u"margin of pictures and of zooming in paper space, percent"},
    {u"viewScale2", N, {10, 90, 20}, u"margin of zooming in model space, percent"},
    {u"selectionEfectColor", N, {1, 255, 6}, u"colour in which marks blink"},
    {u"OSmode", N, kAny, u"OSMODE as it was before the running command"},
    {u"Highlight", N, kAny, u"HIGHLIGHT as it was before the running command"},
    {u"cmdecho", N, kAny, u"CMDECHO as it was before the running command"},
    {u"LOADTOOLBAR", N, kAny, u"1 once the toolbar was shown"},
    {u"Location", T, kAny, u"install folder"},
    {u"synFileUploadPath", T, kAny, u"shared folder of the synchronisation"},
    {u"courierPlace", T, kAny, u"where people who review together meet: a shared folder, or nats://host/project"},
    {u"NoticeString", T, kAny, u"notice shown at start-up"},
    {u"NoticeStringN", N, kAny, u"how often the notice was shown; it ends at 10"},

    // Editors, phrase library, reports, aids
    {u"top", N, kAny, u"upper edge of the mark editor"},
    {u"left", N, kAny, u"left edge of the mark editor"},
    {u"right", N, kAny, u"right edge of the mark editor"},
    {u"bottom", N, kAny, u"lower edge of the mark editor"},
    {u"derectDraw", N, kAny, u"1: choosing a phrase draws the mark at once"},
    {u"CYZSLocation", T, kAny, u"folder of the phrase files"},
    {u"useXmlMenu", N, kAny, u"1: phrases come from XmlMenuFile"},
    {u"XmlMenuFile", T, kAny, u"the XML phrase library"},
    {u"savedNearTxt%d", T, kAny, u"recently used phrases", kKey, {0, 14}},
    {u"DockControlBarWidth", N, kAny, u"width of the review palette"},
    {u"useTemplet", N, kAny, u"1: reports are filled into TempleteHTML"},
    {u"TempleteHTML", T, kAny, u"the report template"},
    {u"Yun_LoginName", T, kAny, u"login name, written by the cloud client"},
    {u"Yun_status", T, kAny, u"\"online\" while the cloud client is connected"},
    {u"Yun_tmpXmlFn", T, kAny, u"last file handed to the cloud programs"},
    {u"YesTickHeight", N, {1, kMost, 100}, u"size of new tick symbols"},
    {u"defaultGreen", N, kAny, u"not 0: a plain click places the green tick"},
    {u"DiTuColor", N, {1, 255, 254}, u"colour of overlays"},
    {u"WhiteAllColor", N, {1, 255, 254}, u"the one colour of a whitened drawing"},

    // Report template
    {u"List%d", T, kAny, u"remembered entries of each row of the template dialog, separated by |", kTemplateKey, {0, 19}},
    {u"txt%d", T, kAny, u"text last entered in each row of the template dialog", kTemplateKey, {0, 19}},
    {u"xmlList%d", T, kAny, u"remembered entries of each row of the XML export dialog, separated by |", kTemplateKey, {1, 10}},
    {u"xmlTxt%d", T, kAny, u"text last entered in each row of the XML export dialog", kTemplateKey, {1, 10}},
    {u"fieldList", T, kAny, u"placeholder names of the template dialog, separated by commas", kTemplateKey},
    {u"tipList", T, kAny, u"captions of the template dialog, separated by commas", kTemplateKey},
});
// clang-format on

} // namespace table

/// A row of the table, found while the program is compiled: a name that is in no row of this kind does not
/// compile. Letter case counts here, other than in the store.
template <Kind kind>
class Name
{
public:
    template <std::convertible_to<QStringView> T>
    consteval Name(const T &name) : m_row(find(name))
    {
    }
    constexpr explicit Name(const Row &row) : m_row(&row) {}
    const Row *operator->() const { return m_row; }

private:
    static constexpr bool areSame(QStringView a, QStringView b)
    {
        bool same = a.size() == b.size();
        for (qsizetype i = 0; same && i < a.size(); ++i)
            same = a.utf16()[i] == b.utf16()[i];
        return same;
    }
    static consteval const Row *find(QStringView name)
    {
        for (const Row &row : table::kRows) {
            if (row.kind == kind && areSame(row.name, name))
                return &row;
        }
        throw "there is no such setting";
    }

    const Row *m_row;
};
using Number = Name<Kind::number>;
using Text = Name<Kind::text>;

} // namespace settings
