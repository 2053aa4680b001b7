#include "quillnote/reports/template_fields.h"

#include "quillnote/frame/settings/settings.h"

#include <algorithm>

static constexpr int kMostRows = 20;
static constexpr qsizetype kMostValues = 20;
static constexpr char16_t kDefaultCaptions[] =
    u"文件名:,  项目名称:,  图纸名称:,  项目编号:,  图纸编号:,  设计阶段:,"
    u"\t设计日期:,  设计人:,  审核日期1:,  审核人1";
static constexpr char16_t kDefaultPlaceholders[] =
    u"$文件名$,  $项目名称$,  $图纸名称$,  $项目编号$,  $图纸编号$,  $设计阶段$,"
    u"\t$设计日期$,  $设计人$,  $审核日期1$,  $审核人1$";

static QStringList trimmedItems(const QString &list, QChar separator)
{
    QStringList items = list.split(separator);
    for (QString &item : items)
        item = item.trimmed();
    return items;
}

static QStringList storedItems(settings::Text row)
{
    const QString list = settings::text(row);
    return list.isEmpty() ? QStringList() : trimmedItems(list, u',');
}

std::vector<TemplateField> templateFields()
{
    QStringList captions = storedItems(u"tipList");
    QStringList placeholders = storedItems(u"fieldList");
    if (captions.isEmpty() || placeholders.isEmpty()) {
        captions = trimmedItems(QString::fromUtf16(kDefaultCaptions), u',');
        placeholders = trimmedItems(QString::fromUtf16(kDefaultPlaceholders), u',');
    }
    std::vector<TemplateField> fields;
    const qsizetype count = std::min<qsizetype>({captions.size(), placeholders.size(), kMostRows});
    for (qsizetype i = 0; i < count; ++i)
        fields.push_back(
            {captions[i], placeholders[i].isEmpty() ? QStringLiteral("$空白$") : placeholders[i], {}});
    return fields;
}

static constexpr settings::Text kLists = u"List%d";
static constexpr settings::Text kTexts = u"txt%d";

static QStringList cleanValues(const QString &list)
{
    QStringList values = trimmedItems(list, u'|');
    values.removeAll(QString());
    return values.first(std::min(values.size(), kMostValues));
}

RememberedRow rememberedRow(int row)
{
    return {cleanValues(settings::text(kLists, row)), settings::text(kTexts, row)};
}

void rememberRows(const QStringList &texts)
{
    for (int row = 0; row < kMostRows; ++row) {
        QString list = settings::text(kLists, row);
        if (row < texts.size()) {
            if (!list.contains(texts[row]))
                list = texts[row] + u'|' + list;
            settings::setText(kTexts, row, texts[row]);
        }
        settings::setText(kLists, row, cleanValues(list).join(u'|'));
    }
}
