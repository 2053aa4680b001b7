#include "tests/app/canvas/view_stage.h"

#include "host/acdb/dbsymtb.h"
#include "host/aced/edcommands.h"
#include "host/aced/edpicture.h"
#include "host/aced/edspace.h"
#include "host/aced/edsysvar.h"
#include "host/aced/hostcommands.h"
#include "host/acgi/query/install.h"

#include <gtest/gtest.h>

#include <QTest>
#include <QWheelEvent>

namespace tests
{

static const MemoryDrawing &registered(const MemoryDrawing &content)
{
    acedRegisterHostCommands();
    acgi::install();
    return content;
}

ViewStage::ViewStage(const MemoryDrawing &content)
    : m_drawing(registered(content).open()), m_before(acedSetFrontEnd(&frontEnd)), view(frontEnd)
{
    acedSetIntVar(QStringLiteral("BACKGROUNDCOLOR"), 0);
    QObject::connect(&frontEnd, &window::WindowFrontEnd::printed,
                     [this](const QString &text) { printed += text; });
    QObject::connect(&view, &window::DrawingView::enterPressed, [this] { type({}); });
    view.resize(kWidth, kHeight);
    AcGeView &shown = document().view();
    shown.centre = {0, 0, 0};
    shown.height = kHeight;
    shown.pixelWidth = kWidth;
    shown.pixelHeight = kHeight;
    view.show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&view));
}

ViewStage::~ViewStage()
{
    acedSetFrontEnd(m_before);
}

void ViewStage::play(const Steps &steps)
{
    std::size_t next = 0;
    QTimer timer;
    timer.setInterval(0);
    QObject::connect(&timer, &QTimer::timeout, [&] {
        if (!frontEnd.prompt())
            return;
        if (next < steps.size()) {
            steps[next++]();
        } else if (frontEnd.isIdle()) {
            acedEditor()->requestQuit();
            frontEnd.giveText({});
        } else {
            frontEnd.cancel();
        }
    });
    timer.start();
    acedEditor()->processInput();
    EXPECT_EQ(next, steps.size());
}

void ViewStage::click(QPoint at, Qt::KeyboardModifiers modifiers)
{
    moveTo(at);
    QTest::mouseClick(&view, Qt::LeftButton, modifiers, at);
}

void ViewStage::press(QPoint at, Qt::KeyboardModifiers modifiers)
{
    QTest::mousePress(&view, Qt::LeftButton, modifiers, at);
}

void ViewStage::moveTo(QPoint at)
{
    QMouseEvent event(QEvent::MouseMove, at, view.mapToGlobal(at), Qt::NoButton, Qt::NoButton,
                      Qt::NoModifier);
    QApplication::sendEvent(&view, &event);
}

void ViewStage::release(QPoint at, Qt::KeyboardModifiers modifiers)
{
    QTest::mouseRelease(&view, Qt::LeftButton, modifiers, at);
}

void ViewStage::wheel(QPoint at, int delta)
{
    QWheelEvent event(at, view.mapToGlobal(at), {}, {0, delta}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&view, &event);
}

AcDbObjectId ViewStage::last() const
{
    const BlockContents *const contents = database().blockContents(database().modelSpaceId());
    return AcDbObjectId(database().stub(contents->entities.back()));
}

AcGePoint3d ViewStage::point(AcDbObjectId entity, int code) const
{
    const ResbufList groups = database().fileGroups(*entity.stub());
    const resbuf *const group = findGroup(groups, code);
    return group ? group->point() : AcGePoint3d(NAN, NAN, NAN);
}

bool ViewStage::becomesSharp()
{
    view.refresh();
    return QTest::qWaitFor([this] { return view.isSharp(); }, 10000);
}

QImage ViewStage::freshPicture() const
{
    return acedPicture(database(), acedShownSpace(document()), acedViewport(document()),
                       acedScreenOptions(document()));
}

} // namespace tests
