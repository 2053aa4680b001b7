#include "helpers/ink_relay/ink_overlay.h"

#include "helpers/ink_relay/ink_curve.h"
#include "helpers/ink_relay/ink_icons.h"
#include "helpers/ink_relay/ink_strip.h"

#include "host/base/atomic_file.h"

#include <QApplication>
#include <QCloseEvent>
#include <QEventLoop>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QScreen>
#include <QTabletEvent>
#include <QWindow>

#include <algorithm>
#include <cmath>

namespace ink
{

static constexpr int kStripFromEdge = 12;
static constexpr double kSmallestShape = 3.0; ///< Pixels; less is a click that went astray.

// What is below ------------------------------------------------------------------------------------

/// The program's own window that shows all of the area, if one does.
static QWidget *windowBelow(const QRect &area)
{
    QWidget *window = QApplication::topLevelAt(area.center());
    return window && window->geometry().contains(area) ? window : nullptr;
}

/// A picture rather than a translucent window wherever one can be had: not every window system composes
/// windows, and none tells reliably. Null when neither the program nor the screen gives a picture.
static QPixmap pictureBelow(const QRect &area)
{
    if (QWidget *window = windowBelow(area))
        return window->grab(QRect(window->mapFromGlobal(area.topLeft()), area.size()));
    QScreen *screen = QGuiApplication::screenAt(area.center());
    if (!screen)
        return {};
    const QPoint place = area.topLeft() - screen->geometry().topLeft();
    return screen->grabWindow(0, place.x(), place.y(), area.width(), area.height());
}

// The window ---------------------------------------------------------------------------------------

Overlay::Overlay(const QRect &area, const QString &path)
    : m_path(path), m_document(area.size()), m_below(pictureBelow(area))
{
    setWindowFlags(Qt::Dialog | Qt::FramelessWindowHint);
    setWindowModality(Qt::ApplicationModal);
    setAttribute(Qt::WA_TranslucentBackground, m_below.isNull());
    setWindowTitle(tr("手绘草图"));
    setAccessibleName(windowTitle());
    setCursor(Qt::CrossCursor);
    setFocusPolicy(Qt::StrongFocus);
    setGeometry(area);
    setFixedSize(area.size());
    // Of the window and not of a parent: the overlay has to outlive a window that goes away.
    QWidget *below = windowBelow(area);
    winId();
    if (below)
        windowHandle()->setTransientParent(below->windowHandle());

    m_strip = new Strip(this);
    m_strip->move(std::max(0, (width() - m_strip->width()) / 2), kStripFromEdge);
    connect(m_strip, &Strip::undoAsked, this, [this] {
        m_document.undo();
        showStep();
    });
    connect(m_strip, &Strip::redoAsked, this, [this] {
        m_document.redo();
        showStep();
    });
    connect(m_strip, &Strip::clearAsked, this, [this] {
        m_document.clear();
        showStep();
    });
    connect(m_strip, &Strip::cancelAsked, this, &Overlay::cancel);
    connect(m_strip, &Strip::doneAsked, this, &Overlay::done);
    showStep();
}

bool Overlay::run()
{
    QEventLoop loop;
    m_loop = &loop;
    show();
    activateWindow();
    setFocus();
    loop.exec();
    m_loop = nullptr;
    hide();
    return m_isWritten;
}

void Overlay::leave(bool isWritten)
{
    m_isWritten = isWritten;
    if (m_loop)
        m_loop->exit();
}

void Overlay::done()
{
    end();
    if (m_document.isEmpty())
        return leave(false);
    const auto written = base::writeFileAtomically(m_path, m_document.bytes());
    if (written)
        return leave(true);
    QMessageBox::warning(this, windowTitle(),
                         tr("草图无法保存，请重试或取消。\n%1").arg(written.error().text()));
    activateWindow();
}

void Overlay::cancel()
{
    if (m_current)
        abandon();
    else
        leave(false);
}

void Overlay::closeEvent(QCloseEvent *event)
{
    event->accept();
    leave(false);
}

// The shape under the pen ---------------------------------------------------------------------------

QPointF Overlay::onCanvas(const QPointF &place) const
{
    return {std::clamp(place.x(), 0.0, double(width())), std::clamp(place.y(), 0.0, double(height()))};
}

/// The nearest of the eight main directions for lines, a square around the shorter side for the others.
static QPointF constrained(Kind kind, const QPointF &from, const QPointF &to)
{
    const QPointF way = to - from;
    if (kind != Kind::line) {
        const double side = std::min(std::abs(way.x()), std::abs(way.y()));
        return from + QPointF(std::copysign(side, way.x()), std::copysign(side, way.y()));
    }
    if (std::abs(way.y()) < std::abs(way.x()) * std::tan(M_PI / 8))
        return {to.x(), from.y()};
    if (std::abs(way.x()) < std::abs(way.y()) * std::tan(M_PI / 8))
        return {from.x(), to.y()};
    const double side = std::min(std::abs(way.x()), std::abs(way.y()));
    return from + QPointF(std::copysign(side, way.x()), std::copysign(side, way.y()));
}

void Overlay::begin(const QPointF &place)
{
    const Pen &pen = m_strip->pen();
    m_isFreehand = pen.tool == Tool::freehand;
    m_current = Shape{.kind = pen.kind(), .points = {place}, .color = pen.color, .penWidth = pen.width};
    if (!m_isFreehand)
        m_current->points.push_back(place);
    update(*m_current);
}

void Overlay::extend(const QPointF &place, bool isConstrained)
{
    if (!m_current)
        return;
    const QPointF target = onCanvas(place);
    Shape &shape = *m_current;
    if (m_isFreehand) {
        Shape piece = shape;
        piece.points = {shape.points.back(), target};
        shape.points.push_back(target);
        return update(piece);
    }
    update(shape);
    shape.points.back() = isConstrained ? constrained(shape.kind, shape.points.front(), target) : target;
    update(shape);
}

void Overlay::end()
{
    if (!m_current)
        return;
    Shape shape = *m_current;
    abandon();
    const QPointF way = shape.points.back() - shape.points.front();
    if (m_isFreehand)
        shape.points = strokeOf(shape.points);
    else if (std::hypot(way.x(), way.y()) < kSmallestShape)
        return;
    m_document.add(std::move(shape));
    showStep();
}

void Overlay::abandon()
{
    update(*m_current);
    m_current.reset();
}

void Overlay::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        begin(onCanvas(event->position()));
    else if (m_current)
        abandon();
}

void Overlay::mouseMoveEvent(QMouseEvent *event)
{
    extend(event->position(), event->modifiers().testFlag(Qt::ShiftModifier));
}

void Overlay::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        end();
}

/// As the mouse, but with the places between pixels that a tablet knows. What is not accepted comes again as
/// an event of the mouse.
void Overlay::tabletEvent(QTabletEvent *event)
{
    event->setAccepted(m_current.has_value() || event->button() == Qt::LeftButton);
    if (event->type() == QEvent::TabletPress && event->button() == Qt::LeftButton)
        begin(onCanvas(event->position()));
    else if (event->type() == QEvent::TabletMove)
        extend(event->position(), event->modifiers().testFlag(Qt::ShiftModifier));
    else if (event->type() == QEvent::TabletRelease && event->button() == Qt::LeftButton)
        end();
}

// Painting -----------------------------------------------------------------------------------------

void Overlay::showStep()
{
    m_strip->follow(m_document);
    paintAll();
    update();
}

void Overlay::paintAll()
{
    if (m_below.isNull()) {
        m_picture = QPixmap(size() * devicePixelRatio());
        m_picture.setDevicePixelRatio(devicePixelRatio());
        // Some window systems let clicks fall through where there is nothing at all.
        m_picture.fill(QColor(0, 0, 0, 1));
    } else {
        m_picture = m_below;
    }
    QPainter painter(&m_picture);
    painter.setRenderHint(QPainter::Antialiasing);
    for (const Shape &shape : m_document.shapes())
        paint(painter, shape);
}

void Overlay::update(const Shape &shape)
{
    update(bounds(shape).toAlignedRect());
}

void Overlay::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    painter.setClipRegion(event->region());
    painter.drawPixmap(0, 0, m_picture);
    painter.setRenderHint(QPainter::Antialiasing);
    if (m_current)
        paint(painter, *m_current);
    // Tells that the drawing is being sketched on.
    painter.setPen(QPen(QColor(0x1A, 0x73, 0xE8), 4.0, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.drawRect(rect());
}

} // namespace ink
