// WindowSession: the editor running over the window's front end, worked step by step.
//
//     session.play({[&] { session.front.giveText("LINE"); }, [&] { session.front.cancel(); }});
//
// Each step runs when a prompt waits; the editor ends behind the last one.
#pragma once

#include "app/front_end/window_front_end.h"
#include "tests/support/memory_drawing.h"

#include <functional>

namespace tests
{

class WindowSession
{
public:
    WindowSession();
    ~WindowSession();
    WindowSession(const WindowSession &) = delete;
    WindowSession &operator=(const WindowSession &) = delete;

    using Steps = std::vector<std::function<void()>>;
    /// Fails the test when the steps come to nothing within some seconds.
    void play(const Steps &steps);
    QString prompt() const { return front.prompt() ? front.prompt()->message.trimmed() : QString(); }

    window::WindowFrontEnd front;
    QString printed;

private:
    AcEdFrontEnd *m_before;
};

/// Entities of the current space.
std::vector<AcDbObjectId> currentEntities();

} // namespace tests
