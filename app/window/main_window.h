// The main window: drawings in tabs, the command line, menus, toolbars, the status line. It gives the editor
// answers and looks at the documents whenever the editor waits for a command; it changes nothing in between.
#pragma once

#include "app/window/document_guard.h"
#include "app/window/host_menus.h"

#include <QMainWindow>

class QDockWidget;
class QStackedWidget;

namespace window
{

class CommandLinePanel;
class DocumentTabs;
class DrawingView;
class FindBar;
class LayoutTabs;
class MenuBar;
class StartPage;
class StatusLine;
class WindowFrontEnd;

class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(WindowFrontEnd &front);

    /// At the first command prompt: offers what a crash left, and opens the drawings.
    void start(const QStringList &files);
    /// Opens drawings when the editor is free; failures are told in message boxes.
    void openFiles(const QStringList &files);
    /// Without a question (DocumentGuard::leaveAtOnce).
    bool leaveAtOnce();
    /// Position and panels, for the next run.
    void keepSettings() const;

protected:
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void buildCentre();
    void buildCommandLine();
    void connectParts();
    void restoreSettings();
    void refresh();
    void noteDocuments();
    void perform(WindowAction action);
    void openNow(const QString &path);
    void openRecent(const QString &path);
    void activate(int place);
    void showAskedAbout(AcApDocument *document);
    void activateNext(int by);
    void showLayout(int place);
    void close(int place);
    void toggleBackground();
    void openHelp();
    void showAbout();

    WindowFrontEnd &m_front;
    DocumentGuard m_guard;
    MenuBar *m_menus = nullptr;
    QStackedWidget *m_pages = nullptr;
    StartPage *m_startPage = nullptr;
    DocumentTabs *m_documents = nullptr;
    DrawingView *m_view = nullptr;
    LayoutTabs *m_layouts = nullptr;
    FindBar *m_find = nullptr;
    CommandLinePanel *m_commandLine = nullptr;
    QDockWidget *m_commandDock = nullptr;
    StatusLine *m_status = nullptr;
    QStringList m_known; ///< Paths of the open drawings at the last prompt.
};

} // namespace window
