#include "app/window/window_run.h"

#include "app/front_end/window_front_end.h"
#include "app/window/ended_from_outside.h"
#include "app/window/first_start.h"
#include "app/window/icons.h"
#include "app/window/main_window.h"
#include "app/window/readable_palette.h"
#include "app/window/visible_edges.h"
#include "host/acap/docman.h"
#include "host/aced/edcommands.h"
#include "host/os/settings_store.h"

#include <QApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace window
{

/// The window is Chinese; those who prefer English read English. A plain "C" locale says nothing.
static bool prefersEnglish()
{
    const QStringList languages = QLocale::system().uiLanguages();
    return QLocale::system().language() != QLocale::C && !languages.isEmpty() &&
           languages.constFirst().startsWith(QLatin1String("en"));
}

/// Ours, and Qt's own for the buttons of its dialogs.
static void loadTranslations(QTranslator &own, QTranslator &qt)
{
    const QString folder =
        QDir::cleanPath(QApplication::applicationDirPath() + QStringLiteral("/../share/translations"));
    const bool english = prefersEnglish();
    if (own.load(english ? QStringLiteral("quillnote_en") : QStringLiteral("quillnote_zh_CN"), folder))
        QApplication::installTranslator(&own);
    if (!english &&
        qt.load(QStringLiteral("qtbase_zh_CN"), QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(&qt);
}

static void closeAllDocuments()
{
    while (!acDocManager()->documents().empty())
        acDocManager()->closeDocument(acDocManager()->documents().back().get());
}

int run(const QStringList &files, const std::function<void()> &loadModules)
{
    QTranslator own, qt;
    loadTranslations(own, qt);
    QApplication::setStyle(new VisibleEdges);
    QApplication::setWindowIcon(programIcon());
    const ReadablePalette readable;
    WindowFrontEnd front;
    AcEdFrontEnd *const before = acedSetFrontEnd(&front);
    {
        MainWindow mainWindow(front);
        const EndedFromOutside ended([&mainWindow] { return mainWindow.leaveAtOnce(); });
        takeFirstSettings(os::SettingsStore::user(),
                          prefersEnglish() ? QStringLiteral("en") : QStringLiteral("zh_CN"));
        loadModules();
        mainWindow.show();
        front.whenIdle([&] { mainWindow.start(files); });
        acedEditor()->processInput();
        mainWindow.keepSettings();
        mainWindow.hide();
        closeAllDocuments();
    }
    acedSetFrontEnd(before);
    return 0;
}

} // namespace window
