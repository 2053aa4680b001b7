// Filling a template: the user's own page with markers, and a block of it that repeats for each mark.
#pragma once

#include "quillnote/reports/reported_mark.h"
#include "quillnote/reports/template_fields.h"

#include <functional>
#include <vector>

/// Hands out the report piece by piece. Lines lose the blanks around them and their line ends; empty ones
/// fall away. A line with all built-in markers explains them and stays as it is. The lines between
/// "$开始重复$" and "$结束重复$" come once for each mark that is not hidden.
void fillTemplate(const QString &text, const std::vector<TemplateField> &fields,
                  const std::vector<ReportedMark> &marks, const std::function<void(const QString &)> &write);
