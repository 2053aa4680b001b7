// The table of every setting: key, name, type, default and meaning. A new setting gets its row here.
#include "quillnote/frame/settings/settings.h"

#include <array>

namespace settings
{

static constexpr Kind N = Kind::number;
static constexpr Kind T = Kind::text;

// clang-format off
static constexpr std::array kTable = std::to_array<Value>({
    // Display and drawing
    {kKey, u"style", N, u"0", u"target outline of new marks, -6 to 6"},
    {kKey, u"BKstyle", N, u"103", u"flag or text-box frame of new marks, 99 to 105"},
    {kKey, u"color1", N, u"2", u"first colour of new marks, 1 to 255"},
    {kKey, u"color2", N, u"2", u"second colour of new marks, 1 to 255; a mark made without the settings takes 5"},
    {kKey, u"textHeight", N, u"VIEWSIZE / 20", u"text height of new marks in model space"},
    {kKey, u"textHeightPS", N, u"VIEWSIZE / 20", u"text height of new marks in paper space"},
    {kKey, u"autoTargetTxtH", N, u"0", u"text height follows the target: 0 or more on, -1 off"},
    {kKey, u"autoFlagSize", N, u"0", u"flag size follows the view: 1 on, -1 or 0 off"},
    {kKey, u"applyAll", N, u"0", u"1: all marks are drawn with the configured height and first colour, not their own"},
    {kKey, u"NoDisplayText", N, u"0", u"1: the text is not shown below the target"},
    {kKey, u"viewDateTime", N, u"0", u"1: marks show their date"},
    {kKey, u"viewName", N, u"0", u"1: marks show the reviewer"},
    {kKey, u"viewFlag", N, u"0", u"1: marks show their flag and number"},
    {kKey, u"DisplayFlagWithFreehandDraw", N, u"0", u"1: freehand marks show their flag too"},
    {kKey, u"TextStyle", N, u"0", u"1: mark text in a TrueType font, else in shape fonts"},
    {kKey, u"ChineseVersion", N, u"0", u"not 0: the password prompt speaks Chinese, else English"},

    // Behaviour
    {kKey, u"doubleClick", N, u"0", u"double-click on a mark: 0 edits it, 1 does nothing, 2 opens the palette"},
    {kKey, u"autoFlagRefresh", N, u"0", u"above 0: flags are refreshed while zooming"},
    {kKey, u"SnapRecord", N, u"0", u"not 0: a picture of the whole view is taken with each new mark"},
    {kKey, u"SnapReview", N, u"0", u"not 0: the palette shows the picture of the whole view"},
    {kKey, u"useLayer", N, u"0", u"1: marks go to the layer LayerName"},
    {kKey, u"LayerName", T, u"", u"layer for marks"},
    {kKey, u"noPlotLayer", N, u"0", u"1: the mark layer does not plot"},
    {kKey, u"name", T, u"", u"name of the reviewer, stamped into new marks"},
    {kKey, u"chPwMD5", T, u"", u"hash of the password of new marks, 32 hexadecimal digits; empty for none"},
    {kKey, u"viewScale", N, u"50", u"margin of pictures and of zooming in paper space, 30 to 90"},
    {kKey, u"viewScale2", N, u"20", u"margin of zooming in model space, percent, 10 to 90"},
    {kKey, u"selectionEfectColor", N, u"6", u"colour in which marks blink, 1 to 255"},
    {kKey, u"OSmode", N, u"0", u"OSMODE as it was before the running command"},
    {kKey, u"Highlight", N, u"0", u"HIGHLIGHT as it was before the running command"},
    {kKey, u"cmdecho", N, u"0", u"CMDECHO as it was before the running command"},
    {kKey, u"LOADTOOLBAR", N, u"0", u"1 once the toolbar was shown"},
    {kKey, u"Location", T, u"", u"install folder"},
    {kKey, u"synFileUploadPath", T, u"", u"shared folder of the synchronisation"},
    {kKey, u"courierPlace", T, u"", u"where people who review together meet: a shared folder, or nats://host/project"},
    {kKey, u"NoticeString", T, u"", u"notice shown at start-up"},
    {kKey, u"NoticeStringN", N, u"0", u"how often the notice was shown; it ends at 10"},

    // Editors, phrase library, reports, aids
    {kKey, u"top", N, u"0", u"upper edge of the mark editor"},
    {kKey, u"left", N, u"0", u"left edge of the mark editor"},
    {kKey, u"right", N, u"0", u"right edge of the mark editor"},
    {kKey, u"bottom", N, u"0", u"lower edge of the mark editor"},
    {kKey, u"derectDraw", N, u"0", u"1: choosing a phrase draws the mark at once"},
    {kKey, u"CYZSLocation", T, u"", u"folder of the phrase files"},
    {kKey, u"useXmlMenu", N, u"0", u"1: phrases come from XmlMenuFile"},
    {kKey, u"XmlMenuFile", T, u"", u"the XML phrase library"},
    {kKey, u"savedNearTxt%d", T, u"", u"recently used phrases", 0, 14},
    {kKey, u"DockControlBarWidth", N, u"0", u"width of the review palette"},
    {kKey, u"useTemplet", N, u"0", u"1: reports are filled into TempleteHTML"},
    {kKey, u"TempleteHTML", T, u"", u"the report template"},
    {kKey, u"Yun_LoginName", T, u"", u"login name, written by the cloud client"},
    {kKey, u"Yun_status", T, u"", u"\"online\" while the cloud client is connected"},
    {kKey, u"Yun_tmpXmlFn", T, u"", u"last file handed to the cloud programs"},
    {kKey, u"YesTickHeight", N, u"100", u"size of new tick symbols; below 1 counts as 100"},
    {kKey, u"defaultGreen", N, u"0", u"not 0: a plain click places the green tick"},
    {kKey, u"DiTuColor", N, u"254", u"colour of overlays, 1 to 255"},
    {kKey, u"Overlay%d", T, u"", u"copy of an overlay and the drawing that was saved with it", 0, 199},
    {kKey, u"WhiteAllColor", N, u"254", u"the one colour of a whitened drawing, 1 to 255"},

    // Report template
    {kTemplateKey, u"List%d", T, u"", u"remembered entries of each row of the template dialog, separated by |", 0, 19},
    {kTemplateKey, u"txt%d", T, u"", u"text last entered in each row of the template dialog", 0, 19},
    {kTemplateKey, u"xmlList%d", T, u"", u"remembered entries of each row of the XML export dialog, separated by |", 1, 10},
    {kTemplateKey, u"xmlTxt%d", T, u"", u"text last entered in each row of the XML export dialog", 1, 10},
    {kTemplateKey, u"fieldList", T, u"", u"placeholder names of the template dialog, separated by commas"},
    {kTemplateKey, u"tipList", T, u"", u"captions of the template dialog, separated by commas"},
});
// clang-format on

std::span<const Value> table()
{
    return kTable;
}

} // namespace settings
