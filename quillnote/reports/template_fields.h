// The fields of a report by template: what the dialog asks for, and what it remembers of earlier answers.
#pragma once

#include <QString>
#include <QStringList>

#include <vector>

struct TemplateField {
    QString caption;
    QString placeholder; ///< "$项目名称$"
    QString value;
};

/// From the settings "tipList" and "fieldList", or ten fields of our own when these name none; 20 at most.
/// Values are empty.
std::vector<TemplateField> templateFields();

/// Values that were typed into a row before, the last one first, and the text that it was left with.
struct RememberedRow {
    QStringList values;
    QString text;
};
RememberedRow rememberedRow(int row);
/// Stores what the rows hold now.
void rememberRows(const QStringList &texts);
