#include "quillnote/reports/report_path.h"

#include "host/aced/edsysvar.h"

QString drawingPath()
{
    if (acedIntVar(QStringLiteral("DWGTITLED")) == 0)
        return {};
    return acedTextVar(QStringLiteral("DWGPREFIX")) + acedTextVar(QStringLiteral("DWGNAME"));
}

QString withoutDrawingEnding(QString path)
{
    for (const char *ending : {"dwg", "DWG", "dxf", "DXF"}) {
        const QString name = QString::fromLatin1(ending);
        path.replace(QLatin1Char('.') + name, QLatin1Char('_') + name.toLower());
    }
    return path;
}

QString textReportPath(const QString &drawing)
{
    return withoutDrawingEnding(drawing + QStringLiteral(".txt"));
}
