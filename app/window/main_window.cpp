#include "app/window/main_window.h"

#include "app/canvas/drawing_view.h"
#include "app/front_end/window_front_end.h"
#include "app/window/command_line_panel.h"
#include "app/window/document_tabs.h"
#include "app/window/find_bar.h"
#include "app/window/icons.h"
#include "app/window/menu_bar.h"
#include "app/window/recent_files.h"
#include "app/window/start_page.h"
#include "app/window/status_line.h"
#include "host/aced/edcommands.h"
#include "host/aced/edselect.h"
#include "host/acui/acuidock.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDockWidget>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QMimeData>
#include <QScreen>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace window
{

static const QString kGeometry = QStringLiteral("Geometry");
static const QString kPanels = QStringLiteral("Panels");
static constexpr int kPanelsVersion = 1;

// Building ----------------------------------------------------------------------------------------

MainWindow::MainWindow(WindowFrontEnd &front) : m_front(front), m_guard(front, this)
{
    setAcceptDrops(true);
    setUnifiedTitleAndToolBarOnMac(true);
    acuiSetMainFrame(this);
    buildCentre();
    buildCommandLine();
    m_status = new StatusLine(this);
    setStatusBar(m_status);
    m_menus = new MenuBar(front, *this);
    m_front.setDrawing(m_view);
    m_front.setDrawingKeeper(&m_guard);
    connectParts();
    restoreSettings();
    refresh();
}

void MainWindow::buildCentre()
{
    m_documents = new DocumentTabs(this);
    m_find = new FindBar(m_front, this);
    m_find->hide();
    m_view = new DrawingView(m_front, this);
    m_layouts = new LayoutTabs(this);
    auto *const drawing = new QWidget(this);
    auto *const rows = new QVBoxLayout(drawing);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    rows->addWidget(m_documents);
    rows->addWidget(m_find);
    rows->addWidget(m_view, 1);
    rows->addWidget(m_layouts);
    m_startPage = new StartPage(this);
    m_pages = new QStackedWidget(this);
    m_pages->addWidget(m_startPage);
    m_pages->addWidget(drawing);
    setCentralWidget(m_pages);
}

void MainWindow::buildCommandLine()
{
    m_commandLine = new CommandLinePanel(m_front, this);
    m_commandDock = new QDockWidget(tr("命令行"), this);
    m_commandDock->setObjectName(QStringLiteral("dock.commandLine"));
    m_commandDock->setFeatures(QDockWidget::DockWidgetMovable);
    m_commandDock->setAllowedAreas(Qt::TopDockWidgetArea | Qt::BottomDockWidgetArea);
    m_commandDock->setTitleBarWidget(new QWidget(m_commandDock)); // It needs no title.
    m_commandDock->setWidget(m_commandLine);
    addDockWidget(Qt::BottomDockWidgetArea, m_commandDock);
    resizeDocks({m_commandDock}, {fontMetrics().lineSpacing() * 6}, Qt::Vertical);
}

void MainWindow::connectParts()
{
    connect(&m_front, &WindowFrontEnd::promptChanged, this, [this] {
        if (m_front.isIdle())
            refresh();
    });
    connect(&m_front, &WindowFrontEnd::progressed, m_status, &StatusLine::showProgress);
    connect(&m_front, &WindowFrontEnd::serviceShown, m_status, &StatusLine::showService);
    connect(m_status, &StatusLine::stopWanted, &m_front, &WindowFrontEnd::stopWork);
    connect(m_status, &StatusLine::backgroundWanted, this, &MainWindow::toggleBackground);
    connect(m_view, &DrawingView::cursorMoved, m_status, &StatusLine::showPlace);
    connect(m_view, &DrawingView::viewChanged, m_status, &StatusLine::refresh);
    connect(m_view, &DrawingView::pickSetChanged, m_status, &StatusLine::refresh);
    connect(m_view, &DrawingView::busyChanged, m_status, &StatusLine::showBusy);
    connect(m_view, &DrawingView::textTyped, m_commandLine, &CommandLinePanel::type);
    connect(m_view, &DrawingView::enterPressed, m_commandLine, &CommandLinePanel::confirm);
    connect(m_commandLine, &CommandLinePanel::heightWanted, this,
            [this](int height) { resizeDocks({m_commandDock}, {height}, Qt::Vertical); });
    connect(&m_guard, &DocumentGuard::asksAbout, this, &MainWindow::showAskedAbout);
    connect(m_find, &FindBar::closed, this, [this] { m_front.focusDrawing(); });
    connect(m_documents, &DocumentTabs::wanted, this, &MainWindow::activate);
    connect(m_documents, &QTabBar::tabCloseRequested, this, [this](int place) { close(place); });
    connect(m_layouts, &LayoutTabs::wanted, this, &MainWindow::showLayout);
    connect(m_menus, &MenuBar::chosen, this, &MainWindow::perform);
    connect(m_menus, &MenuBar::fileChosen, this, &MainWindow::openRecent);
    connect(m_menus, &MenuBar::documentChosen, this, &MainWindow::activate);
    connect(m_startPage, &StartPage::openWanted, this,
            [this] { m_front.runMacro(QStringLiteral("^C^C_OPEN ")); });
    connect(m_startPage, &StartPage::newWanted, this,
            [this] { m_front.runMacro(QStringLiteral("^C^C_NEW ")); });
    connect(m_startPage, &StartPage::fileWanted, this, &MainWindow::openRecent);
}

void MainWindow::restoreSettings()
{
    if (!restoreGeometry(keptState(kGeometry)))
        resize(screen()->availableSize() * 0.8);
    resize(size().boundedTo(screen()->availableSize())); // The screen may be another one since.
    restoreState(keptState(kPanels), kPanelsVersion);
}

void MainWindow::keepSettings() const
{
    keepState(kGeometry, saveGeometry());
    keepState(kPanels, saveState(kPanelsVersion));
}

// Following the documents -------------------------------------------------------------------------

void MainWindow::refresh()
{
    const AcApDocument *const document = curDoc();
    m_menus->refresh();
    m_documents->refresh();
    m_layouts->refresh();
    m_status->refresh();
    noteDocuments();
    const bool isOpen = document != nullptr;
    if (m_pages->currentIndex() != int(isOpen)) {
        m_startPage->refresh();
        m_pages->setCurrentIndex(int(isOpen));
    }
    setWindowTitle(isOpen ? QStringLiteral("Quillnote - %1[*]").arg(titleOf(*document))
                          : QStringLiteral("Quillnote[*]"));
    setWindowModified(isOpen && document->isModified());
}

/// Whatever way a drawing was opened or got its name, it joins the recent files.
void MainWindow::noteDocuments()
{
    QStringList open;
    for (const auto &document : acDocManager()->documents()) {
        open += document->fileName();
        if (document->isNamedDrawing() && !m_known.contains(document->fileName()))
            RecentFiles::add(document->fileName());
    }
    if (open == m_known)
        return;
    m_known = open;
    m_find->forget();
}

// Actions -----------------------------------------------------------------------------------------

void MainWindow::perform(WindowAction action)
{
    switch (action) {
    case WindowAction::find:
        m_find->open();
        break;
    case WindowAction::selectAll:
        m_front.whenIdle([this] { m_view->selectAll(); });
        break;
    case WindowAction::nextDrawing:
        activateNext(1);
        break;
    case WindowAction::previousDrawing:
        activateNext(-1);
        break;
    case WindowAction::background:
        toggleBackground();
        break;
    case WindowAction::history:
        m_commandLine->toggleHistory();
        break;
    case WindowAction::help:
        openHelp();
        break;
    case WindowAction::about:
        showAbout();
        break;
    case WindowAction::none:
    case WindowAction::undo:
    case WindowAction::redo:
    case WindowAction::recentFiles:
        break; // Macros and menus.
    }
}

void MainWindow::start(const QStringList &files)
{
    m_guard.offerRecovery();
    m_guard.watch();
    for (const QString &file : files)
        openNow(file);
    m_commandLine->setFocus();
}

void MainWindow::openFiles(const QStringList &files)
{
    m_front.whenIdle([this, files] {
        for (const QString &file : files)
            openNow(file);
    });
}

void MainWindow::openNow(const QString &path)
{
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const auto restore = qScopeGuard([] { QApplication::restoreOverrideCursor(); });
    m_guard.open(path);
}

void MainWindow::openRecent(const QString &path)
{
    if (QFileInfo::exists(path)) {
        openFiles({path});
        return;
    }
    RecentFiles::remove(path);
    m_startPage->refresh();
    QMessageBox::warning(this, QApplication::applicationDisplayName(),
                         tr("文件 %1 已不存在，已从最近的文件中移除。").arg(path));
}

/// By its place among the tabs; null when it is gone by now.
static AcApDocument *documentAt(int place)
{
    const auto &documents = acDocManager()->documents();
    return place >= 0 && place < int(documents.size()) ? documents[std::size_t(place)].get() : nullptr;
}

/// Commands that run outside any drawing let the user go from one to another while they ask.
static bool isSessionCommandRunning()
{
    const AcEdCommand *const running = acedRegCmds()->lookup(acedEditor()->activeCommands());
    return running && running->flags & ACRX_CMD_SESSION;
}

void MainWindow::activate(int place)
{
    if (AcApDocument *const document = documentAt(place);
        document && m_front.prompt() && isSessionCommandRunning()) {
        acDocManager()->activateDocument(document);
        refresh();
        m_view->refresh();
        return;
    }
    m_front.whenIdle([document = documentAt(place)] {
        if (acDocManager()->isOpen(document))
            acDocManager()->activateDocument(document);
    });
}

/// The user sees which drawing he is asked to save. A command that works on a drawing keeps it.
void MainWindow::showAskedAbout(AcApDocument *document)
{
    if (document == curDoc() || (curDoc() && curDoc()->lockMode() != AcAp::kNone))
        return;
    acDocManager()->activateDocument(document);
    refresh();
    m_view->refresh();
}

void MainWindow::activateNext(int by)
{
    const int count = int(acDocManager()->documents().size());
    if (count > 1)
        activate((m_documents->currentIndex() + by + count) % count);
}

/// Given as answers, because a layout's name may hold blanks.
void MainWindow::showLayout(int place)
{
    const QString name = m_layouts->layoutName(place);
    const auto typed = AcEdAnswer::ofText;
    m_front.whenIdle([this, name, typed] {
        if (name.compare(QLatin1String("Model"), Qt::CaseInsensitive) == 0)
            m_front.queue({typed(QStringLiteral("_MODEL"))});
        else
            m_front.queue({typed(QStringLiteral("_-LAYOUT")), typed(QStringLiteral("_Set")), typed(name)});
    });
}

void MainWindow::close(int place)
{
    // Until the editor is free the tabs may have others.
    m_front.whenIdle([this, document = documentAt(place)] {
        if (acDocManager()->isOpen(document) && m_guard.mayClose(document))
            acDocManager()->closeDocument(document);
    });
}

bool MainWindow::leaveAtOnce()
{
    if (!m_guard.leaveAtOnce())
        return false;
    keepSettings();
    return true;
}

void MainWindow::toggleBackground()
{
    m_front.whenIdle([this] { m_view->setWhiteBackground(!m_view->whiteBackground()); });
}

// Help --------------------------------------------------------------------------------------------

void MainWindow::openHelp()
{
    const QString command = QStringLiteral("QN3_HelpOnline");
    const AcEdCommand *const found = acedRegCmds()->lookup(command);
    if (found && (curDoc() || found->flags & ACRX_CMD_SESSION)) {
        m_front.runMacro(QStringLiteral("^C^C_%1 ").arg(command));
        return;
    }
    QMessageBox box(this);
    box.setWindowTitle(tr("帮助"));
    box.setTextFormat(Qt::RichText);
    box.setText(
        tr("<p>打开一张图 (Ctrl+O)，在“评图标签”菜单中选择标签的种类，框住要说明的地方，写下意见。</p>"
           "<p>滚轮缩放，按住中键平移，双击中键显示全部。命令也可以直接输入：名称、空格或回车；"
           "Esc 取消，空回车重复上一条命令，F2 展开命令历史。</p>"));
    box.exec();
}

void MainWindow::showAbout()
{
    QMessageBox::about(this, tr("关于 Quillnote"),
                       tr("<h3>Quillnote %1</h3><p>在 DWG 和 DXF 图纸中书写、回复和核对校审意见。</p>"
                          "<p>使用 Qt %2。</p>")
                           .arg(QStringLiteral(QUILLNOTE_VERSION), QString::fromLatin1(qVersion())));
}

// Events ------------------------------------------------------------------------------------------

void MainWindow::closeEvent(QCloseEvent *event)
{
    // The answer comes when the editor is free; then the program ends, and the window with it.
    event->ignore();
    m_front.runMacro(QStringLiteral("^C^C_QUIT "));
}

/// Keys that no widget wanted belong to the command line.
void MainWindow::keyPressEvent(QKeyEvent *event)
{
    const bool isText = !event->text().isEmpty() && event->text().at(0).isPrint() &&
                        !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    if (event->key() == Qt::Key_Escape)
        m_commandLine->escape();
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        m_commandLine->confirm();
    else if (isText)
        m_commandLine->type(event->text());
    else
        QMainWindow::keyPressEvent(event);
}

static QStringList droppedFiles(const QMimeData &data)
{
    QStringList files;
    for (const QUrl &url : data.urls()) {
        if (url.isLocalFile())
            files += url.toLocalFile();
    }
    return files;
}

void MainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    if (!droppedFiles(*event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent *event)
{
    event->acceptProposedAction();
    activateWindow();
    openFiles(droppedFiles(*event->mimeData()));
}

} // namespace window
