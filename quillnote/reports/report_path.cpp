#include "quillnote/reports/report_path.h"

#include "host/aced/edsysvar.h"

QString drawingPath()
{
    if (acedIntVar(QStringLiteral("DWGTITLED")) == 0)
        return {};
    return acedTextVar(QStringLiteral("DWGPREFIX")) + acedTextVar(QStringLiteral("DWGNAME"));
}

static QString folderOf(const QString &path)
{
    return path.left(path.lastIndexOf(u'/') + 1);
}

static QString nameOf(const QString &path)
{
    return path.mid(path.lastIndexOf(u'/') + 1);
}

QString withoutDrawingEnding(const QString &path)
{
    QString name = nameOf(path);
    for (const auto &[ending, replacement] : {std::pair{u".dwg", u"_dwg"}, std::pair{u".dxf", u"_dxf"}})
        name.replace(QString::fromUtf16(ending), QString::fromUtf16(replacement), Qt::CaseInsensitive);
    return folderOf(path) + name;
}

QString withoutHash(const QString &path)
{
    return folderOf(path) + nameOf(path).replace(u'#', u'_');
}

QString textReportPath(const QString &drawing)
{
    return withoutDrawingEnding(drawing + QStringLiteral(".txt"));
}

QString webReportPath(const QString &drawing)
{
    return withoutHash(withoutDrawingEnding(drawing) + QStringLiteral(".html"));
}

QString sheetPath(const QString &drawing)
{
    return withoutHash(withoutDrawingEnding(drawing) + QStringLiteral("N.html"));
}

QString reviewPagePath(const QString &drawing)
{
    return withoutHash(withoutDrawingEnding(drawing) + QStringLiteral("-review.html"));
}
