#include "tests/app/front_end/window_session.h"

#include "host/acap/docman.h"
#include "host/acdb/dbsymtb.h"
#include "host/aced/edcommands.h"
#include "host/aced/hostcommands.h"

#include <gtest/gtest.h>

#include <QTimer>

namespace tests
{

WindowSession::WindowSession()
{
    acedRegisterHostCommands();
    m_before = acedSetFrontEnd(&front);
    QObject::connect(&front, &window::WindowFrontEnd::printed,
                     [this](const QString &text) { printed += text; });
}

WindowSession::~WindowSession()
{
    acedSetFrontEnd(m_before);
}

void WindowSession::play(const Steps &steps)
{
    std::size_t next = 0;
    QTimer step;
    step.setSingleShot(true);
    QObject::connect(&step, &QTimer::timeout, [&] {
        if (next < steps.size())
            steps[next++]();
        else
            front.leave();
    });
    QObject::connect(&front, &window::WindowFrontEnd::promptChanged, &step, [&] {
        if (front.prompt())
            step.start(0);
    });
    QTimer lost;
    lost.setSingleShot(true);
    QObject::connect(&lost, &QTimer::timeout, [&] {
        ADD_FAILURE() << "no prompt after step " << next << ": " << qPrintable(printed);
        front.leave();
    });
    lost.start(20'000);
    acedEditor()->processInput();
    EXPECT_EQ(next, steps.size());
}

std::vector<AcDbObjectId> currentEntities()
{
    AcDbObjectPointer<AcDbBlockTableRecord> space(acdbCurDwg()->currentSpaceId(), AcDb::kForRead);
    return space->entities();
}

} // namespace tests
