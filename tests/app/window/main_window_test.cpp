// The main window over a running editor: tabs, titles, what it shows with and without a drawing.
#include "app/canvas/drawing_view.h"
#include "app/window/command_line_panel.h"
#include "app/window/document_tabs.h"
#include "app/window/find_bar.h"
#include "app/window/main_window.h"
#include "app/window/readable_palette.h"
#include "app/window/recent_files.h"
#include "app/window/start_page.h"
#include "app/window/status_line.h"
#include "app/window/visible_edges.h"
#include "tests/app/front_end/window_session.h"
#include "tests/support/files.h"
#include "tests/support/script_front_end.h"

#include "host/acdb/dbfiler.h"
#include "host/acdb/dbsymtb.h"
#include "host/aced/edpick.h"
#include "host/aced/edspace.h"
#include "host/acgi/query/install.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDropEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>
#include <QToolButton>

TEST(MainWindow, FollowsTheDrawings)
{
    acgi::install();
    tests::WindowSession session;
    window::MainWindow mainWindow(session.front);
    mainWindow.resize(1200, 800);
    mainWindow.show();
    auto *const documents = mainWindow.findChild<window::DocumentTabs *>();
    auto *const layouts = mainWindow.findChild<window::LayoutTabs *>();
    auto *const start = mainWindow.findChild<window::StartPage *>();
    const auto type = [&](const char *text) {
        return [&session, text] { session.front.giveText(QString::fromLatin1(text)); };
    };
    session.play({
        [&] {
            EXPECT_TRUE(start->isVisible());
            EXPECT_EQ(mainWindow.windowTitle(), u"Quillnote[*]");
            session.front.giveText(QStringLiteral("NEW"));
        },
        [&] {
            EXPECT_FALSE(start->isVisible());
            EXPECT_EQ(documents->count(), 1);
            EXPECT_GT(documents->height(), 10);
            EXPECT_EQ(mainWindow.windowTitle(),
                      QStringLiteral("Quillnote - %1[*]").arg(curDoc()->docTitle()));
            EXPECT_FALSE(mainWindow.isWindowModified());
            session.front.giveText(QStringLiteral("POINT"));
        },
        type("1,2"),
        [&] {
            EXPECT_TRUE(mainWindow.isWindowModified());
            EXPECT_TRUE(documents->tabText(0).endsWith(u"•"));
            ASSERT_GT(layouts->count(), 1);
            layouts->setCurrentIndex(1);
        },
        [&] { session.front.giveText({}); }, // Behind LAYOUT.
        [&] {
            EXPECT_EQ(acedCurrentLayoutName(*curDoc()), layouts->layoutName(1));
            session.front.giveText(QStringLiteral("NEW"));
        },
        [&] {
            EXPECT_EQ(documents->count(), 2);
            EXPECT_EQ(documents->currentIndex(), 1);
            documents->setCurrentIndex(0);
        },
        [&] {
            EXPECT_EQ(curDoc(), acDocManager()->documents().front().get());
            EXPECT_EQ(layouts->currentIndex(), 1);
            auto *const panel = mainWindow.findChild<window::CommandLinePanel *>();
            const int before = panel->height();
            panel->toggleHistory();
            QCoreApplication::processEvents();
            EXPECT_GT(panel->height(), before + 50);
            session.front.giveText({});
        },
    });
    while (!acDocManager()->documents().empty())
        acDocManager()->closeDocument(acDocManager()->documents().back().get());
}

TEST(MainWindow, ShowsWhatIsReadOnlyWhatIsChosenAndWhatItAsksAbout)
{
    acgi::install();
    tests::TempDir folder;
    const QString plan = folder.write("plan.dxf", "0\nSECTION\n2\nENTITIES\n0\nPOINT\n8\n0\n10\n1\n20\n2\n0\n"
                                                  "ENDSEC\n0\nEOF\n");
    tests::WindowSession session;
    window::MainWindow mainWindow(session.front);
    mainWindow.show();
    auto *const documents = mainWindow.findChild<window::DocumentTabs *>();
    auto *const status = mainWindow.findChild<window::StatusLine *>();
    AcApDocument *const changed = acDocManager()->newDocument();
    changed->database()->setHeaderVariable("$USERI1", {{70, std::int64_t(1)}});
    AcApDocument *const current = *acDocManager()->openDocument(plan, AcApOpenAs::readOnly);
    QString seen;
    QTimer whenAsked;
    session.play({
        [&] {
            EXPECT_TRUE(mainWindow.windowTitle().contains(u"只读"));
            EXPECT_TRUE(documents->tabText(1).contains(u"只读"));
            EXPECT_FALSE(documents->tabText(0).contains(u"只读"));
            curDoc()->pickSet() = {acedLastEntity(*curDoc())};
            mainWindow.findChild<window::DrawingView *>()->refresh();
            EXPECT_TRUE(status->factsText().contains(u'1'));

            QObject::connect(&whenAsked, &QTimer::timeout, [&] {
                auto *const box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
                if (!box)
                    return;
                whenAsked.stop();
                seen = mainWindow.windowTitle();
                EXPECT_EQ(documents->currentIndex(), 0);
                box->button(QMessageBox::Cancel)->click();
            });
            whenAsked.start();
            mainWindow.QWidget::close();
        },
        [&] {
            EXPECT_TRUE(seen.contains(changed->docTitle()));
            EXPECT_TRUE(acDocManager()->isOpen(current));
            session.front.giveText({});
        },
    });
    while (!acDocManager()->documents().empty())
        acDocManager()->closeDocument(acDocManager()->documents().back().get());
}

namespace
{

/// An entity of a module that may be hidden; its class is known while a Hideable::Class lives.
class Hideable : public AcDbEntity
{
public:
    struct Class {
        Class()
        {
            auto added = std::make_unique<AcRxClass>(QStringLiteral("TestHideable"), AcDbEntity::desc(),
                                                     "TESTHIDEABLE",
                                                     []() -> AcRxObject * { return new Hideable(false); });
            added->setApplication({.description = QStringLiteral("a test")});
            s_class = acrxClassDictionary().add(std::move(added));
        }
        ~Class() { deleteAcRxClass(s_class); }
        Class(const Class &) = delete;
        Class &operator=(const Class &) = delete;
    };

    explicit Hideable(bool hidden) : AcDbEntity("TESTHIDEABLE"), m_hidden(hidden) {}
    AcRxClass *isA() const override { return s_class; }
    Acad::ErrorStatus dwgInFields(AcDbDwgFiler *filer) override { return filer->readBool(m_hidden); }
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler *filer) const override { return filer->writeBool(m_hidden); }
    bool subIsHidden() const override { return m_hidden; }
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents &extents) const override
    {
        extents = {{0, 0, 0}, {1, 1, 0}};
        return Acad::eOk;
    }

private:
    bool m_hidden;
    inline static AcRxClass *s_class = nullptr;
};

} // namespace

TEST(MainWindow, LeavesWhatIsHiddenAloneAndCountsIt)
{
    acgi::install();
    const Hideable::Class known;
    tests::WindowSession session;
    window::MainWindow mainWindow(session.front);
    mainWindow.show();
    session.play({
        [&] { session.front.giveText(QStringLiteral("NEW")); },
        [&] {
            std::vector<AcDbObjectId> ids(3);
            for (std::size_t i = 0; i < ids.size(); ++i) {
                AcDbObjectPointer<AcDbBlockTableRecord> space(curDoc()->database()->modelSpaceId(),
                                                              AcDb::kForWrite);
                auto made = std::make_unique<Hideable>(i != 1);
                ASSERT_EQ(space->appendAcDbEntity(ids[i], made.get()), Acad::eOk);
                made.release()->close();
            }
            QKeyEvent everything(QEvent::KeyPress, Qt::Key_A, Qt::ControlModifier);
            QApplication::sendEvent(mainWindow.findChild<window::DrawingView *>(), &everything);
            EXPECT_EQ(curDoc()->pickSet(), std::vector{ids[1]});
            const QString facts = mainWindow.findChild<window::StatusLine *>()->factsText();
            EXPECT_TRUE(facts.contains(QStringLiteral("已选择 1 个"))) << facts.toStdString();
            EXPECT_TRUE(facts.contains(QStringLiteral("2 个标签已隐藏"))) << facts.toStdString();
            session.front.giveText({});
        },
    });
    while (!acDocManager()->documents().empty())
        acDocManager()->closeDocument(acDocManager()->documents().back().get());
}

TEST(StatusLine, WorkCanBeStoppedWhileItIsShown)
{
    window::StatusLine line;
    line.show();
    auto *const stop = line.findChild<QToolButton *>();
    ASSERT_TRUE(stop);
    int stops = 0;
    QObject::connect(&line, &window::StatusLine::stopWanted, &line, [&] { ++stops; });
    line.showProgress(QStringLiteral("画图"), 0.3);
    EXPECT_TRUE(stop->isVisible());
    stop->click();
    EXPECT_EQ(stops, 1);
    line.showProgress({}, 1.0);
    EXPECT_FALSE(stop->isVisible());
}

TEST(RecentFiles, KeepTheLastTen)
{
    for (int i = 0; i < 12; ++i)
        window::RecentFiles::add(QStringLiteral("/plans/%1.dxf").arg(i));
    window::RecentFiles::add(QStringLiteral("/plans/5.dxf"));
    QStringList files = window::RecentFiles::list();
    ASSERT_EQ(files.size(), 10);
    EXPECT_EQ(files[0], u"/plans/5.dxf");
    EXPECT_EQ(files[1], u"/plans/11.dxf");
    window::RecentFiles::remove(QStringLiteral("/plans/11.dxf"));
    files = window::RecentFiles::list();
    EXPECT_EQ(files.size(), 9);
    EXPECT_EQ(files[1], u"/plans/10.dxf");
}

TEST(StartPage, IsNoHigherThanASmallScreen)
{
    for (int i = 0; i < 10; ++i)
        window::RecentFiles::add(QStringLiteral("/plans/%1.dxf").arg(i));
    window::StartPage page;
    EXPECT_LT(page.minimumSizeHint().height(), 300);
    page.resize(700, 300);
    page.show();
    const auto *const area = page.findChild<QScrollArea *>();
    ASSERT_TRUE(area);
    EXPECT_GT(area->verticalScrollBar()->maximum(), 0) << "what does not fit can be scrolled to";
    EXPECT_EQ(area->horizontalScrollBar()->maximum(), 0);
}

TEST(MainWindow, OpensWhatIsDroppedAndKeepsItsPlace)
{
    acgi::install();
    tests::WindowSession session;
    const tests::TempDir folder;
    const QString path =
        folder.write(QStringLiteral("dropped plan.dxf"), "0\nSECTION\n2\nENTITIES\n0\nENDSEC\n0\nEOF\n");
    QRect place;
    {
        window::MainWindow mainWindow(session.front);
        mainWindow.setGeometry(30, 40, 700, 500);
        mainWindow.show();
        QMimeData files;
        files.setUrls({QUrl::fromLocalFile(path)});
        session.play({
            [&] {
                QDragEnterEvent enters({5, 5}, Qt::CopyAction, &files, Qt::LeftButton, {});
                QApplication::sendEvent(&mainWindow, &enters);
                EXPECT_TRUE(enters.isAccepted());
                QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &files, Qt::LeftButton, {});
                QApplication::sendEvent(&mainWindow, &drop);
            },
            [&] {
                ASSERT_TRUE(curDoc());
                EXPECT_EQ(curDoc()->docTitle(), u"dropped plan.dxf");
                session.front.giveText({});
            },
        });
        place = mainWindow.geometry();
        mainWindow.keepSettings();
        while (!acDocManager()->documents().empty())
            acDocManager()->closeDocument(acDocManager()->documents().back().get());
    }
    const window::MainWindow later(session.front);
    EXPECT_EQ(later.geometry(), place);
}

/// What a person works with; scroll buttons and the crosses of tabs have keys of their own.
static std::vector<QWidget *> controlsOf(QWidget &window)
{
    std::vector<QWidget *> controls;
    for (QWidget *const widget : window.findChildren<QWidget *>()) {
        const bool isControl = qobject_cast<QAbstractButton *>(widget) || qobject_cast<QLineEdit *>(widget) ||
                               qobject_cast<QTabBar *>(widget) || qobject_cast<QPlainTextEdit *>(widget) ||
                               qobject_cast<window::DrawingView *>(widget);
        if (isControl && widget->isVisible() && !qobject_cast<QTabBar *>(widget->parentWidget()) &&
            !qobject_cast<QLineEdit *>(widget->parentWidget()) &&
            widget->objectName() != u"qt_toolbar_ext_button")
            controls.push_back(widget);
    }
    return controls;
}

static bool isInAMenu(const QWidget &window, const QWidget *control)
{
    const auto *const button = qobject_cast<const QToolButton *>(control);
    const QAction *const action = button ? button->defaultAction() : nullptr;
    const auto menus = window.findChildren<QMenu *>();
    return action && std::any_of(menus.begin(), menus.end(),
                                 [&](const QMenu *menu) { return menu->actions().contains(action); });
}

TEST(MainWindow, EveryControlHasANameAndAWayToItByKeyboard)
{
    tests::WindowSession session;
    window::MainWindow mainWindow(session.front);
    mainWindow.resize(1200, 800);
    mainWindow.show();
    const auto check = [&](std::size_t least) {
        const std::vector<QWidget *> controls = controlsOf(mainWindow);
        EXPECT_GE(controls.size(), least);
        for (QWidget *const control : controls) {
            const std::string what =
                std::string(control->metaObject()->className()) + " " + control->objectName().toStdString();
            const QAccessibleInterface *const told = QAccessible::queryAccessibleInterface(control);
            ASSERT_TRUE(told) << what;
            EXPECT_NE(told->text(QAccessible::Name), QString()) << what;
            EXPECT_TRUE(control->focusPolicy() & Qt::TabFocus || isInAMenu(mainWindow, control)) << what;
        }
    };
    session.play({
        [&] {
            check(12);
            session.front.giveText(QStringLiteral("NEW"));
        },
        [&] {
            mainWindow.findChild<window::FindBar *>()->open();
            check(18);
            session.front.giveText({});
        },
    });
    acDocManager()->closeDocument(curDoc());
}

TEST(ReadablePalette, CorrectsOnlyWhatCannotBeRead)
{
    const auto paletteOf = [](const QColor &text, const QColor &background, const QColor &disabled) {
        QPalette palette(text, background, text, background, background, text, text, background, background);
        for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
            palette.setColor(QPalette::Disabled, role, disabled);
        for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled})
            palette.setColor(group, QPalette::PlaceholderText, disabled);
        return palette;
    };
    EXPECT_EQ(window::paletteCorrections(paletteOf(Qt::black, Qt::white, Qt::gray)).resolveMask(), 0u);
    EXPECT_EQ(window::paletteCorrections(paletteOf(Qt::black, Qt::yellow, QColor(120, 120, 0))).resolveMask(),
              0u);
    for (const auto &[text, background] :
         {std::pair(Qt::white, Qt::black), std::pair(Qt::black, Qt::yellow)}) {
        const QPalette corrected = window::paletteCorrections(paletteOf(text, background, background))
                                       .resolve(paletteOf(text, background, background));
        for (const QPalette::ColorRole role :
             {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::PlaceholderText}) {
            const int shown = qGray(corrected.color(QPalette::Disabled, role).rgb());
            EXPECT_GE(std::abs(shown - qGray(QColor(background).rgb())), 75) << role;
            EXPECT_GE(std::abs(shown - qGray(QColor(text).rgb())), 75) << role;
        }
        EXPECT_EQ(corrected.color(QPalette::Active, QPalette::Text), QColor(text));
    }
}

TEST(VisibleEdges, ShowOnDarkDesktopsOnly)
{
    window::VisibleEdges style;
    const auto drawn = [&style](const QColor &background, bool isVisible) {
        QCheckBox box;
        if (isVisible)
            box.setStyle(&style);
        box.setPalette(QPalette(Qt::gray, background, Qt::gray, background, background, Qt::gray, Qt::gray,
                                background, background));
        box.resize(20, 20);
        return box.grab().toImage().convertToFormat(QImage::Format_Grayscale8);
    };
    const auto brightest = [](const QImage &image) {
        int gray = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                gray = std::max(gray, qGray(image.pixel(x, y)));
        }
        return gray;
    };
    EXPECT_LT(brightest(drawn(Qt::black, false)), 60) << "no longer needed";
    EXPECT_GE(brightest(drawn(Qt::black, true)), 75);
    EXPECT_GE(brightest(drawn(QColor(35, 38, 41), true)), 60);
    EXPECT_EQ(drawn(QColor(239, 239, 239), true), drawn(QColor(239, 239, 239), false));
}
