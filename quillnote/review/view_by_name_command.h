// Showing only the marks of one reviewer.
#pragma once

#include <QString>

class AcDbDatabase;

/// Command: choose a reviewer and see his marks only; OK without a choice shows all marks again.
void QN3_ViewByName();

/// Hides every mark but those of the reviewer ("*未命名*": those without a name), which are shown in full. A
/// name without marks changes nothing.
void showMarksOf(AcDbDatabase &database, const QString &reviewer);
