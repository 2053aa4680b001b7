#include "quillnote/reports/xml_project.h"

#include "quillnote/frame/settings/settings.h"
#include "quillnote/reports/mark_selection.h"
#include "quillnote/ui/xml_dialog.h"

#include <array>

/// Rows of the dialog in their order; the first one is the drawing's name and never remembered.
static constexpr std::array kRows{
    &XmlProject::fileName,      &XmlProject::projectName,    &XmlProject::subProjectName,
    &XmlProject::projectCode,   &XmlProject::projectManager, &XmlProject::discipline,
    &XmlProject::designCompany, &XmlProject::designer,       &XmlProject::designPhase,
    &XmlProject::drawingName,   &XmlProject::drawingNumber};

static QStringList captions()
{
    const QString all =
        QStringLiteral("文件名:,  项目名称:,  子项目名:,  项目编号:,  项目负责人:,  专业名称:,   设计公司:, "
                       "设计人:, 设计阶段:, 图纸名称:, 图纸序号:");
    QStringList captions;
    for (const QString &caption : all.split(u','))
        captions.append(caption.trimmed());
    return captions;
}

static constexpr settings::Text kLists = u"xmlList%d";
static constexpr settings::Text kTexts = u"xmlTxt%d";

static QStringList itemsOf(const QString &list)
{
    QStringList items;
    for (const QString &item : list.split(u'|')) {
        if (!item.trimmed().isEmpty())
            items.append(item.trimmed());
    }
    return items;
}

static std::vector<TemplateDialogRow> dialogRows()
{
    std::vector<TemplateDialogRow> rows;
    for (const QString &caption : captions()) {
        const int row = int(rows.size());
        if (row == 0)
            rows.push_back({caption, {}, {}, true});
        else
            rows.push_back(
                {caption, itemsOf(settings::text(kLists, row)), settings::text(kTexts, row), false});
    }
    return rows;
}

// What is empty is not written: the next time shows what was there before.
static void remember(int row, const QString &text)
{
    constexpr qsizetype kMostItems = 11;
    QString list = settings::text(kLists, row);
    if (!list.contains(text))
        list = text + u'|' + list;
    const QStringList items = itemsOf(list).mid(0, kMostItems);
    if (!items.isEmpty())
        settings::setText(kLists, row, items.join(u'|'));
    if (!text.isEmpty())
        settings::setText(kTexts, row, text);
}

std::optional<XmlProject> askXmlProject(const QString &fileName)
{
    const auto texts = runXmlDialog(dialogRows(), fileName, pickTexts);
    if (!texts)
        return std::nullopt;
    XmlProject project;
    for (qsizetype row = 0; row < texts->size(); ++row) {
        project.*kRows[std::size_t(row)] = texts->at(row);
        if (row > 0)
            remember(int(row), texts->at(row));
    }
    return project;
}
