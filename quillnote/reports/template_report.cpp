#include "quillnote/reports/template_report.h"

#include "quillnote/frame/settings/settings.h"
#include "quillnote/reports/mark_selection.h"
#include "quillnote/reports/report_file.h"
#include "quillnote/reports/report_path.h"
#include "quillnote/reports/report_start.h"
#include "quillnote/reports/review_sheet.h"
#include "quillnote/reports/template_fields.h"
#include "quillnote/reports/template_fill.h"
#include "quillnote/ui/template_dialog.h"

#include "host/aced/edmessage.h"
#include "host/base/file_bytes.h"

#include <QFileInfo>

#include <algorithm>
#include <array>
#include <optional>

QString templateReportPath(const QString &drawing)
{
    QString path = withoutDrawingEnding(drawing) + QStringLiteral(".html");
    for (int k = 1; QFileInfo::exists(path); ++k)
        path = withoutDrawingEnding(drawing + u'_' + QString::number(k)) + QStringLiteral(".html");
    return path;
}

// The template -------------------------------------------------------------------------------------------

/// How templates begin that an editor saved in another encoding.
static bool isForeign(std::string_view bytes)
{
    constexpr std::array<std::string_view, 3> kBeginnings{"\xFF\xFE\x2D", "\xEF\xBB\xBF", "\xFE\xFF\x4E"};
    return std::ranges::find(kBeginnings, bytes.substr(0, 3)) != kBeginnings.end();
}

static std::optional<base::FileBytes> readTemplate(const QString &path)
{
    auto bytes = base::readFileBytes(path);
    if (bytes && !isForeign(bytes->view()))
        return *std::move(bytes);
    acedFail(QStringLiteral("< %1 >文件不是ANSI编码，请用记事本打开并以ANSI格式保存。").arg(path));
    return std::nullopt;
}

// The fields ---------------------------------------------------------------------------------------------

static std::vector<TemplateDialogRow> dialogRows(const std::vector<TemplateField> &fields)
{
    std::vector<TemplateDialogRow> rows;
    for (const TemplateField &field : fields) {
        const RememberedRow remembered = rememberedRow(int(rows.size()));
        rows.push_back({field.caption, remembered.values, remembered.text,
                        field.placeholder == QStringLiteral("$文件名$")});
    }
    return rows;
}

/// False when the user gave it up.
static bool askValues(std::vector<TemplateField> &fields, const QString &drawing)
{
    const auto texts = runTemplateDialog(dialogRows(fields), drawing, pickTexts);
    if (!texts) {
        acedAlert(QStringLiteral("放弃！"));
        return false;
    }
    rememberRows(*texts);
    for (std::size_t i = 0; i < fields.size(); ++i)
        fields[i].value = texts->at(qsizetype(i));
    return true;
}

// The report ---------------------------------------------------------------------------------------------

void writeTemplateReport()
{
    const auto marks = selectMarks();
    if (!marks || marks->empty())
        return;
    const QString templatePath = settings::text(u"TempleteHTML").trimmed();
    if (templatePath.isEmpty())
        acedFail(QStringLiteral("未定义评图标签输出模板！"));
    const auto drawing = savedDrawingPath();
    if (!drawing)
        return;
    const QString path = templateReportPath(*drawing);
    const auto bytes = readTemplate(templatePath);
    if (!bytes)
        return;
    auto file = ReportFile::create(path, QStringLiteral("准备写文件< %1 >错误。"));
    std::vector<TemplateField> fields = templateFields();
    if (!file || !askValues(fields, *drawing))
        return;
    for (const ReportedMark &mark : *marks) {
        if (!mark.isHidden)
            warnOfRunnableMarkup(mark);
    }
    fillTemplate(base::TextCodec("ANSI_936").decode(bytes->view()), fields, *marks,
                 [&file](const QString &piece) { file->write(piece); });
    if (file->finish())
        openSheet(path, QStringLiteral("\n图纸校审单已输出为<%1>,马上自动打开。"));
}
