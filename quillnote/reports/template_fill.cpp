#include "quillnote/reports/template_fill.h"

#include "quillnote/entity/mark_values.h"

#include <algorithm>

static constexpr QStringView kBlockBegins = u"$开始重复$";
static constexpr QStringView kBlockEnds = u"$结束重复$";
static constexpr QStringView kSheetNumber = u"$图纸编号$";
static constexpr QStringView kBuiltIn[] = {
    kBlockBegins, kBlockEnds,    u"$项目名称$", u"$图纸名称$", u"$项目编号$",
    kSheetNumber, u"$设计阶段$", u"$设计日期$", u"$设计人$",   u"$审核日期$",
    u"$审核人$",  u"$序号$",     u"$校审意见$", u"$反馈意见$", u"$处理方式$",
};

static QStringList meaningfulLines(const QString &text)
{
    QStringList lines;
    for (const QStringView line : QStringView(text).split(u'\n')) {
        if (const QStringView trimmed = line.trimmed(); !trimmed.isEmpty())
            lines.append(trimmed.toString());
    }
    return lines;
}

static bool explainsMarkers(const QString &line)
{
    return std::ranges::all_of(kBuiltIn, [&line](QStringView marker) { return line.contains(marker); });
}

static QString withFields(QString line, const std::vector<TemplateField> &fields)
{
    for (const TemplateField &field : fields)
        line.replace(field.placeholder, field.value);
    return line;
}

static QString withMark(QString line, const ReportedMark &mark, const TemplateField *sheetNumber)
{
    const std::pair<QStringView, QString> values[] = {
        {u"$修订日期$", mark.revisionDate}, {u"$修订人$", mark.designer},
        {u"$审核日期$", mark.reviewDate},   {u"$审核人$", mark.reviewer},
        {u"$序号$", mark.number},           {u"$校审意见$", mark.opinion},
        {u"$反馈意见$", mark.feedback},     {u"$处理方式$", handling::statusText(mark.status)},
    };
    for (const auto &[marker, value] : values)
        line.replace(marker.toString(), value);
    if (sheetNumber)
        line.replace(kSheetNumber.toString(), sheetNumber->value);
    return line;
}

static void repeatBlock(const QStringList &block, const std::vector<TemplateField> &fields,
                        const std::vector<ReportedMark> &marks,
                        const std::function<void(const QString &)> &write)
{
    const auto found = std::ranges::find(fields, kSheetNumber, &TemplateField::placeholder);
    const TemplateField *const sheetNumber = found == fields.end() ? nullptr : &*found;
    for (const ReportedMark &mark : marks) {
        if (mark.isHidden)
            continue;
        for (const QString &line : block)
            write(withMark(line, mark, sheetNumber));
    }
}

void fillTemplate(const QString &text, const std::vector<TemplateField> &fields,
                  const std::vector<ReportedMark> &marks, const std::function<void(const QString &)> &write)
{
    const QStringList lines = meaningfulLines(text);
    for (qsizetype at = 0; at < lines.size(); ++at) {
        const QString &line = lines[at];
        if (explainsMarkers(line)) {
            write(line);
            continue;
        }
        write(withFields(line, fields));
        if (!line.contains(kBlockBegins))
            continue;
        QStringList block;
        while (++at < lines.size() && !lines[at].contains(kBlockEnds))
            block.append(lines[at]);
        repeatBlock(block, fields, marks, write);
    }
}
