// ViewStage: a drawing view on the (offscreen) screen with a drawing in it, worked by mouse and keyboard
// while the editor runs.
//
//     stage.play({[&] { stage.type("LINE"); }, [&] { stage.click({100, 100}); }, [&] { stage.type(""); }});
//
// Each step runs when a prompt waits; the editor ends behind the last one. One pixel is one unit, and the
// world's origin is the middle of the view, until a test changes that.
#pragma once

#include "app/canvas/drawing_view.h"
#include "app/front_end/window_front_end.h"
#include "tests/support/memory_drawing.h"
#include "tests/support/script_front_end.h"

#include <functional>

namespace tests
{

class ViewStage
{
public:
    static constexpr int kWidth = 800;
    static constexpr int kHeight = 600;

    explicit ViewStage(const MemoryDrawing &content);
    ~ViewStage();

    using Steps = std::vector<std::function<void()>>;
    void play(const Steps &steps);

    void type(const QString &text) { frontEnd.giveText(text); }
    void click(QPoint at, Qt::KeyboardModifiers modifiers = {});
    void press(QPoint at, Qt::KeyboardModifiers modifiers = {});
    void moveTo(QPoint at);
    void release(QPoint at, Qt::KeyboardModifiers modifiers = {});
    void wheel(QPoint at, int delta);

    AcApDocument &document() const { return m_drawing.document(); }
    AcDbDatabase &database() const { return m_drawing.database(); }
    AcDbObjectId id(std::uint64_t handle) const { return m_drawing.id(handle); }
    /// The newest entity of model space.
    AcDbObjectId last() const;
    AcGePoint3d point(AcDbObjectId entity, int code) const;

    /// Waits until the picture is complete.
    bool becomesSharp();
    /// What a painting of everything would give now.
    QImage freshPicture() const;

    window::WindowFrontEnd frontEnd;
    QString printed;

private:
    OpenDrawing m_drawing;
    AcEdFrontEnd *m_before;

public:
    window::DrawingView view;
};

} // namespace tests
