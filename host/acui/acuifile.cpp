#include "host/acui/acuifile.h"

#include "host/aced/edfrontend.h"
#include "host/acui/acuiscript.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>

static QStringList endings(const QString &extensions)
{
    QStringList wanted = extensions.split(u';', Qt::SkipEmptyParts);
    for (QString &ending : wanted)
        ending = ending.trimmed();
    wanted.removeAll(QStringLiteral("*"));
    wanted.removeAll(QString());
    return wanted;
}

static QString withEnding(const QString &path, const QString &extensions)
{
    const QStringList wanted = endings(extensions);
    if (wanted.isEmpty() || !QFileInfo(path).suffix().isEmpty())
        return path;
    return path + QLatin1Char('.') + wanted.first();
}

static QString askPerson(const QString &title, const QString &defaultPath, const QString &extensions,
                         int flags)
{
    QStringList patterns;
    for (const QString &ending : endings(extensions))
        patterns.append(QStringLiteral("*.") + ending);
    const QString filter = patterns.isEmpty() ? QString() : patterns.join(u' ');
    QWidget *owner = QApplication::activeWindow();
    if (flags & kAcUiFolder)
        return QFileDialog::getExistingDirectory(owner, title, defaultPath);
    if (flags & kAcUiSaveFile)
        return QFileDialog::getSaveFileName(owner, title, defaultPath, filter);
    return QFileDialog::getOpenFileName(owner, title, defaultPath, filter);
}

static QString refuse(const QString &reason)
{
    acedFrontEnd().refuseAnswer(reason);
    return {};
}

static QString askScript(const QString &title, int flags)
{
    const QString what = QStringLiteral("file dialog \"%1\" (@file, @cancel)").arg(title);
    const std::optional<QString> line = acedFrontEnd().dialogLine(what);
    if (!line)
        return {};
    const auto action = acuiParseAction(*line);
    if (action && action->verb == AcUiAction::cancel)
        return {};
    if (!action || action->verb != AcUiAction::file)
        return refuse(QStringLiteral("%1: @%2 does not answer it").arg(what, *line));
    if (action->text.isEmpty())
        return refuse(QStringLiteral("%1: the path is empty").arg(what));
    if ((flags & kAcUiFolder) && !QFileInfo(action->text).isDir())
        return refuse(QStringLiteral("%1: there is no folder %2").arg(what, action->text));
    if (!(flags & (kAcUiSaveFile | kAcUiFolder)) && !QFileInfo(action->text).isFile())
        return refuse(QStringLiteral("%1: there is no file %2").arg(what, action->text));
    return action->text;
}

int acedGetFileD(const QString &title, const QString &defaultPath, const QString &extensions, int flags,
                 QString &path)
{
    const QString chosen = acedFrontEnd().isScripted() ? askScript(title, flags)
                                                       : askPerson(title, defaultPath, extensions, flags);
    if (chosen.isEmpty())
        return RTCAN;
    const QString named = flags & kAcUiSaveFile ? withEnding(chosen, extensions) : chosen;
    path = QFileInfo(named).absoluteFilePath();
    return RTNORM;
}
