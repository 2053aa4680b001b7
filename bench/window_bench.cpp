// Claim: the drawing area never stands still: whatever a person does with the mouse over a drawing of 100,000
// entities, a frame takes at most 33 ms. A frame is an event, what the program does about it at once, and the
// view painted. Where a picture needs longer, something is shown within a frame and the sharp picture
// follows.
//
// usage: bench_window FILE.dxf...   (bench/make_drawing.py makes them); QT_QPA_PLATFORM=offscreen
#include "app/canvas/drawing_view.h"
#include "app/front_end/window_front_end.h"
#include "bench/stopwatch.h"
#include "host/acdb/dbsymtb.h"
#include "host/aced/edcommands.h"
#include "host/aced/hostcommands.h"
#include "host/acgi/query/install.h"
#include "quillnote/authoring/new_mark.h"
#include "quillnote/entity/mark_class.h"

#include <QApplication>
#include <QFileInfo>
#include <QWheelEvent>

#include <cmath>
#include <cstdio>
#include <numeric>

static constexpr QSize kWindow(2000, 1400);
static constexpr QPointF kMiddle(1000.0, 700.0);
static constexpr double kFrameBudget = 0.033;

/// A drawing in a view, worked on by steps; each runs when the editor waits for an answer.
class Session
{
public:
    Session();
    ~Session() { acedSetFrontEnd(m_before); }

    void measure();

private:
    using Step = std::function<void()>;

    void play(const std::vector<Step> &steps);
    void send(QEvent::Type type, QPointF at, Qt::MouseButton button = Qt::NoButton);
    void click(QPointF at);
    void wheel(QPointF at, int notches);
    template <class Event>
    double frame(Event event);
    template <class Event>
    std::vector<double> frames(int count, Event event);
    double sharpSeconds(bench::Stopwatch since = {});
    AcDbDatabase &database() const { return *curDoc()->database(); }
    AcDbObjectId lineInTheMiddle() const;
    AcDbObjectId newMark();
    void choose(AcDbObjectId entity);

    void open();
    void pan();
    void zoom();
    void select();
    void takeGrip(AcDbObjectId entity);
    void dragGrip(const char *what);
    void letGo();
    void move();

    window::WindowFrontEnd m_frontEnd;
    AcEdFrontEnd *m_before;
    window::DrawingView m_view;
    QPointF m_grip;
    bench::Stopwatch m_since;
};

static void print(const char *what, double seconds)
{
    std::printf("  %-40s %9.1f ms, %.2f of a frame's budget\n", what, seconds * 1e3, seconds / kFrameBudget);
}

static void printFrames(const char *what, const std::vector<double> &frames)
{
    const double all = std::accumulate(frames.begin(), frames.end(), 0.0);
    const double slowest = *std::max_element(frames.begin(), frames.end());
    std::printf("  %-40s %9.1f frames a second, the slowest %.1f ms, %.2f of the budget\n", what,
                double(frames.size()) / all, slowest * 1e3, slowest / kFrameBudget);
}

// The session -------------------------------------------------------------------------------------

Session::Session() : m_before(acedSetFrontEnd(&m_frontEnd)), m_view(m_frontEnd)
{
    QObject::connect(&m_view, &window::DrawingView::enterPressed, [this] { m_frontEnd.giveText({}); });
    m_view.resize(kWindow);
    m_view.show();
}

/// The next step runs only when the editor waits again, so a step that gives answers ends with them.
void Session::play(const std::vector<Step> &steps)
{
    std::size_t next = 0;
    bool isRunning = false;
    QTimer timer;
    timer.setInterval(0);
    QObject::connect(&timer, &QTimer::timeout, [&] {
        if (!m_frontEnd.prompt() || isRunning)
            return; // The steps themselves let events happen.
        isRunning = true;
        if (next < steps.size()) {
            steps[next++]();
        } else if (m_frontEnd.isIdle()) {
            acedEditor()->requestQuit();
            m_frontEnd.giveText({});
        } else {
            m_frontEnd.cancel();
        }
        isRunning = false;
    });
    timer.start();
    acedEditor()->processInput();
}

void Session::send(QEvent::Type type, QPointF at, Qt::MouseButton button)
{
    const Qt::MouseButtons held = type == QEvent::MouseButtonPress ? button : Qt::NoButton;
    QMouseEvent event(type, at, m_view.mapToGlobal(at), button, held, Qt::NoModifier);
    QApplication::sendEvent(&m_view, &event);
}

void Session::click(QPointF at)
{
    send(QEvent::MouseButtonPress, at, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, at, Qt::LeftButton);
}

void Session::wheel(QPointF at, int notches)
{
    QWheelEvent event(at, m_view.mapToGlobal(at), {}, {0, 120 * notches}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&m_view, &event);
}

/// What is due in the event loop belongs to the frame: the next event would have to wait for it.
template <class Event>
double Session::frame(Event event)
{
    return bench::seconds([&] {
        event();
        m_view.repaint();
        QCoreApplication::processEvents();
    });
}

template <class Event>
std::vector<double> Session::frames(int count, Event event)
{
    std::vector<double> seconds;
    for (int step = 1; step <= count; ++step)
        seconds.push_back(frame([&] { event(step); }));
    return seconds;
}

/// Until the picture is sharp and on the screen.
double Session::sharpSeconds(bench::Stopwatch since)
{
    m_view.refresh();
    while (!m_view.isSharp())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    m_view.repaint();
    return since.seconds();
}

/// The line that begins nearest to the middle of the view.
AcDbObjectId Session::lineInTheMiddle() const
{
    AcDbObjectId nearest;
    double distance = std::numeric_limits<double>::infinity();
    const AcGePoint3d &middle = curDoc()->view().centre;
    for (const std::uint32_t index : database().blockContents(database().modelSpaceId())->entities) {
        const AcDbObjectId id(database().stub(index));
        if (acdbKindName(id.stub()->kind) != "LINE")
            continue;
        const AcDbObjectPointer<AcDbEntity> line(id, AcDb::kForRead);
        const std::vector<AcGePoint3d> grips = line ? line->getGripPoints() : std::vector<AcGePoint3d>();
        if (grips.empty() || grips.front().distanceTo(middle) >= distance)
            continue;
        distance = grips.front().distanceTo(middle);
        nearest = id;
    }
    return nearest;
}

AcDbObjectId Session::newMark()
{
    const AcGeView &view = curDoc()->view();
    NewMark request;
    request.corner1 = view.centre + AcGeVector3d(view.height * 0.1, view.height * 0.1, 0.0);
    request.corner2 = view.centre + AcGeVector3d(view.height * 0.2, view.height * 0.17, 0.0);
    request.reviewerName = QStringLiteral("审图人");
    request.opinionText = QStringLiteral("门宽不足，请核对。");
    return createMark(database(), request);
}

void Session::choose(AcDbObjectId entity)
{
    curDoc()->pickSet() = {entity};
    sharpSeconds();
}

// What is measured --------------------------------------------------------------------------------

void Session::open()
{
    m_since = {};
    print("zoom extents after opening: shown", frame([&] { m_view.zoomExtents(); }));
    print("  sharp", sharpSeconds(m_since));
    printFrames("moving the mouse meanwhile, 60 steps",
                frames(60, [&](int step) { send(QEvent::MouseMove, kMiddle + QPointF(2, 3) * step); }));
}

void Session::pan()
{
    send(QEvent::MouseButtonPress, kMiddle, Qt::MiddleButton);
    printFrames("pan by the middle button, 60 steps",
                frames(60, [&](int step) { send(QEvent::MouseMove, kMiddle + QPointF(7, 4) * step); }));
    send(QEvent::MouseButtonRelease, kMiddle + QPointF(7, 4) * 60, Qt::MiddleButton);
    print("  sharp after the last", sharpSeconds());
}

void Session::zoom()
{
    const QPointF at(700.0, 500.0);
    const auto notch = [&](int step) { wheel(at, step <= 10 ? 1 : -1); };
    std::vector<double> shown, sharp;
    for (int step = 1; step <= 20; ++step) {
        const bench::Stopwatch since;
        shown.push_back(frame([&] { notch(step); }));
        sharp.push_back(sharpSeconds(since));
    }
    printFrames("zoom by the wheel, 20 steps: shown", shown);
    print("  sharp, the slowest", *std::max_element(sharp.begin(), sharp.end()));
    printFrames("the same without a pause: shown", frames(20, notch));
    print("  sharp after the last", sharpSeconds());
}

void Session::takeGrip(AcDbObjectId entity)
{
    choose(entity);
    const AcGePoint3d grip = AcDbObjectPointer<AcDbEntity>(entity, AcDb::kForRead)->getGripPoints().front();
    const AcGePoint3d place = window::pointingView(*curDoc()).worldToPixel() * grip;
    m_grip = {place.x, place.y};
    send(QEvent::MouseButtonPress, m_grip, Qt::LeftButton);
}

void Session::dragGrip(const char *what)
{
    if (acedEditor()->activeCommands() != u"GRIP")
        qFatal("%s: nobody took the grip", what);
    printFrames(what, frames(60, [&](int step) { send(QEvent::MouseMove, m_grip + QPointF(5, -3) * step); }));
    m_since = {};
    send(QEvent::MouseButtonRelease, m_grip + QPointF(5, -3) * 60, Qt::LeftButton);
}

void Session::letGo()
{
    print("  sharp after letting go", sharpSeconds(m_since));
    curDoc()->pickSet().clear();
    sharpSeconds();
}

void Session::select()
{
    const QPointF first(3, 3);
    const QPointF way(kWindow.width() - 7.0, kWindow.height() - 7.0);
    m_view.zoomExtents();
    m_view.zoomBy(0.9, kMiddle); // So that nothing lies in the corners.
    sharpSeconds();
    print("a click beside everything", frame([&] { click(first); }));
    printFrames("a window over everything, 20 steps",
                frames(20, [&](int step) { send(QEvent::MouseMove, first + way * (step / 20.0)); }));
    const bench::Stopwatch since;
    const double chosen = frame([&] { click(first + way); });
    std::printf("  %zu entities chosen\n", curDoc()->pickSet().size());
    print("  shown as chosen, at least some", chosen);
    while (!m_view.isHighlightSharp())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    m_view.repaint();
    print("  all shown as chosen", since.seconds());
    printFrames("  panned with all of it, 20 steps", frames(20, [&](int) { m_view.panBy({5, 3}); }));
    print("  Escape", frame([&] {
              QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
              QApplication::sendEvent(&m_view, &escape);
          }));
    sharpSeconds();
}

void Session::move()
{
    choose(lineInTheMiddle());
    AcEdAnswer command, from, to;
    command.typed = QStringLiteral("_MOVE");
    from.kind = to.kind = AcEdAnswer::point;
    to.where = {curDoc()->view().height / 20.0, 0.0, 0.0};
    m_since = {};
    m_frontEnd.queue({command, from, to});
}

void Session::measure()
{
    play({[this] { open(); }, [this] { pan(); }, [this] { zoom(); }, [this] { takeGrip(lineInTheMiddle()); },
          [this] { dragGrip("drag a grip of a line, 60 moves"); }, [this] { letGo(); },
          [this] { takeGrip(newMark()); }, [this] { dragGrip("drag a grip of a mark, 60 moves"); },
          [this] { letGo(); }, [this] { select(); }, [this] { move(); },
          [this] { print("MOVE of one entity: sharp", sharpSeconds(m_since)); }});
}

static bool measure(const QString &path)
{
    Session session;
    bool isOpen = false;
    const double opening = bench::seconds([&] { isOpen = bool(acDocManager()->openDocument(path)); });
    if (!isOpen)
        return false;
    std::printf("%s, opened in %.3f s\n", qPrintable(QFileInfo(path).fileName()), opening);
    session.measure();
    acDocManager()->closeDocument(curDoc());
    return true;
}

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    acedRegisterHostCommands();
    acgi::install();
    registerMarkClass();
    if (argc < 2)
        std::fprintf(stderr, "usage: bench_window FILE.dxf...\n");
    bool good = argc > 1;
    for (int i = 1; i < argc; ++i)
        good = measure(QString::fromLocal8Bit(argv[i])) && good;
    return good ? 0 : 1;
}
