#include "app/canvas/drawing_view.h"

#include "app/canvas/drawing_cursor.h"
#include "app/canvas/idle_menu.h"

#include "host/aced/edcommands.h"
#include "host/aced/edpick.h"
#include "host/aced/edpicture.h"
#include "host/aced/edselect.h"
#include "host/aced/edspace.h"
#include "host/aced/edsysvar.h"
#include "host/aced/edview.h"
#include "host/aced/edwinmsg.h"
#include "host/acgi/query/spatial_index.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QTextDocument>
#include <QToolTip>
#include <QWheelEvent>

#include <cmath>
#include <utility>

namespace window
{

static const QColor kChosenPlace(255, 140, 0);
static const QString kBackground = QStringLiteral("BACKGROUNDCOLOR");

DrawingView::DrawingView(WindowFrontEnd &frontEnd, QWidget *parent)
    : QWidget(parent), m_frontEnd(frontEnd), m_pointing(frontEnd)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setMinimumSize(100, 100);
    setAccessibleName(tr("图形区"));
    setAccessibleDescription(tr("当前图形。方向键平移，Ctrl 加 + 和 - 缩放，键入的文字进入命令行。"));
    const auto repaint = [this] { update(); };
    connect(&m_picture, &ViewPicture::changed, this, repaint);
    connect(&m_highlight, &ViewHighlight::changed, this, repaint);
    connect(&m_pointing, &Pointing::changed, this, repaint);
    connect(&m_pointing, &Pointing::pickSetChanged, this, &DrawingView::refresh);
    connect(&m_picture, &ViewPicture::busyChanged, this, &DrawingView::busyChanged);
    connect(&m_picture, &ViewPicture::painted, this, &DrawingView::painted);
    connect(&m_frontEnd, &WindowFrontEnd::promptChanged, this, &DrawingView::promptChanged);
    connect(&m_frontEnd, &WindowFrontEnd::chosenShown, this,
            [this](const std::vector<AcDbObjectId> &chosen) { m_chosen = chosen; });
    connect(&m_frontEnd, &WindowFrontEnd::placeShown, this, [this](const std::vector<AcGePoint3d> &outline) {
        m_place = outline;
        update();
    });
    m_watch.setInterval(50);
    connect(&m_watch, &QTimer::timeout, this, &DrawingView::lookForChanges);
    acDocManager()->addReactor(this);
    showCursor();
}

DrawingView::~DrawingView()
{
    acDocManager()->removeReactor(this);
}

// What is shown -----------------------------------------------------------------------------------

QSize DrawingView::pixelSize() const
{
    const double ratio = devicePixelRatioF();
    return {std::max(1, int(std::lround(width() * ratio))), std::max(1, int(std::lround(height() * ratio)))};
}

/// Whatever size the widget gets, it shows at least what was seen when somebody last moved the view: in the
/// file, by a command or by hand.
void DrawingView::fitViewToWidget(AcApDocument &document)
{
    AcGeView &view = document.view();
    FittedView &fitted = m_fitted.try_emplace(&document, FittedView{view, view}).first->second;
    if (view != fitted.shown)
        fitted.asked = view;
    view = fitted.asked.onRaster(pixelSize().width(), pixelSize().height());
    view.pixelRatio = devicePixelRatioF();
    fitted.shown = view;
}

/// Whoever moves the view by hand, step by step without a rest, wants to go back all of it at once.
void DrawingView::rememberView(AcApDocument &document)
{
    constexpr int kRest = 800; // Milliseconds.
    const bool hasRested = !m_lastMove.isValid() || m_lastMove.elapsed() >= kRest;
    if (!m_panFrom && (hasRested || m_movedTo != document.view()))
        acedRememberView(document);
    m_lastMove.start();
}

void DrawingView::viewMoved(AcApDocument &document)
{
    m_movedTo = document.view();
    lookForChanges();
}

/// The drawing is at rest: a prompt waits or nothing runs.
bool DrawingView::mayRead() const
{
    return m_frontEnd.prompt() || acedEditor()->activeCommands().isEmpty();
}

void DrawingView::refresh()
{
    AcApDocument *const document = curDoc();
    if (!document) {
        m_picture.clear();
        m_highlight.clear();
        return;
    }
    if (isVisible() && mayRead())
        showDocument(*document, true);
}

/// Cheap while nothing happens.
void DrawingView::lookForChanges()
{
    AcApDocument *const document = curDoc();
    if (!document || !isVisible() || !mayRead())
        return;
    correctZoom(*document);
    showDocument(*document, false);
}

void DrawingView::showDocument(AcApDocument &document, bool mayHaveChanged)
{
    fitViewToWidget(document);
    AcDbDatabase &database = *document.database();
    ViewSubject subject{&database, acedShownSpace(document), acedViewport(document),
                        acedScreenOptions(document), database.folder()};
    const bool isOther = m_shown != &database || m_changeCount != database.changeCount();
    const bool isElsewhere = m_shown != &database || !isSameView(m_view, subject.view);
    if (isOther || isElsewhere || mayHaveChanged)
        acedFilterWindowMessage({WM_PAINT, effectiveWinId()});
    if (isOther || mayHaveChanged)
        m_picture.takeDamage();
    if (std::exchange(m_background, subject.options.background) != subject.options.background)
        showCursor();
    m_picture.show(subject);
    m_shown = &database;
    m_changeCount = database.changeCount();
    m_view = subject.view;
    showHighlight();
    if (isOther || isElsewhere || mayHaveChanged)
        m_pointing.update();
    if (isElsewhere)
        Q_EMIT viewChanged();
}

void DrawingView::showHighlight()
{
    AcApDocument *const document = curDoc();
    const bool isGripCommand = acedEditor()->activeCommands() == u"GRIP";
    const bool showsPickSet = m_frontEnd.isIdle() || !m_frontEnd.prompt() || isGripCommand;
    const std::vector<AcDbObjectId> &entities = showsPickSet ? document->pickSet() : m_chosen;
    m_highlight.show(document->database(), entities, pointingView(*document), m_background);
    if (std::exchange(m_pickSetSize, document->pickSet().size()) != document->pickSet().size())
        Q_EMIT pickSetChanged();
}

void DrawingView::promptChanged()
{
    if (!m_frontEnd.prompt()) {
        m_watch.stop();
        m_pointing.update();
        return;
    }
    m_watch.start();
    showCursor();
    refresh();
}

void DrawingView::documentToBeDestroyed(AcApDocument *document)
{
    m_fitted.erase(document);
    if (document->database() != m_shown)
        return;
    m_shown = nullptr;
    m_roughZoom.reset();
    m_chosen.clear();
    m_picture.clear();
    m_highlight.clear();
}

void DrawingView::documentActivated(AcApDocument *)
{
    if (m_frontEnd.prompt())
        refresh();
}

// Zooming and panning -----------------------------------------------------------------------------

/// Beyond, numbers lose what is seen.
static constexpr double kLeastHeight = 1e-9;
static constexpr double kMostHeight = 1e15;

void DrawingView::zoomBy(double factor, QPointF at)
{
    AcApDocument *const document = curDoc();
    if (!document || !(factor > 0.0) || !std::isfinite(factor))
        return;
    fitViewToWidget(*document);
    rememberView(*document);
    AcGeView &view = document->view();
    const double height = std::clamp(view.height / factor, kLeastHeight, kMostHeight);
    const QPointF pixel = toPixel(at);
    AcGePoint3d place =
        pointingView(*document).worldToPixel().inverse() * AcGePoint3d(pixel.x(), pixel.y(), 0.0);
    place.z = view.centre.z;
    view.centre = place + (view.centre - place) * (height / view.height);
    view.height = height;
    viewMoved(*document);
}

void DrawingView::panBy(QPoint way)
{
    AcApDocument *const document = curDoc();
    if (!document || way.isNull())
        return;
    fitViewToWidget(*document);
    rememberView(*document);
    AcGeView &view = document->view();
    const QPoint pixels = toPixel(way).toPoint();
    const AcGeVector3d seen(-pixels.x() * view.pixelSize(), pixels.y() * view.pixelSize(), 0.0);
    view.centre = view.centre + view.getEyeToWorldTransform() * seen;
    viewMoved(*document);
}

/// What the file says of model space; not valid when that cannot be.
static AcDbExtents savedExtents(const AcDbDatabase &database, AcDbObjectId space)
{
    constexpr double kNowhere = 1e19; // Written for a space without entities.
    AcDbExtents box;
    if (space != database.modelSpaceId())
        return box;
    const AcGePoint3d low = database.headerPoint("$EXTMIN");
    const AcGePoint3d high = database.headerPoint("$EXTMAX");
    if (low.x < high.x && low.y < high.y && low.x > -kNowhere && low.y > -kNowhere && high.x < kNowhere &&
        high.y < kNowhere)
        box = {low, high};
    return box;
}

void DrawingView::zoomExtents()
{
    if (AcApDocument *const document = curDoc()) {
        acedRememberView(*document);
        showEverything(*document);
    }
}

void DrawingView::showEverything(AcApDocument &document)
{
    AcDbDatabase &database = *document.database();
    const AcDbObjectId space = acedShownSpace(document);
    constexpr int kPatience = 5; // Milliseconds.
    m_roughZoom.reset();
    AcDbExtents box;
    const bool isKnown = acgi::spatialIndexOf(database).prepare(space, kPatience);
    if (!isKnown)
        box = savedExtents(database, space);
    const bool isRough = box.isValid();
    if (!isRough)
        box = acedShownExtents(database, space, acedViewport(document));
    zoomTo(document, box);
    if (isRough)
        m_roughZoom = RoughZoom{&database, document.view()};
}

/// The index is ready one day.
void DrawingView::correctZoom(AcApDocument &document)
{
    if (!m_roughZoom)
        return;
    const AcGeView &left = m_roughZoom->view;
    const AcGeView &now = document.view();
    const bool isLeft = document.database() == m_roughZoom->database && left.centre == now.centre &&
                        left.height == now.height;
    if (isLeft && !acgi::spatialIndexOf(*document.database()).prepare(acedShownSpace(document), 0))
        return;
    m_roughZoom.reset();
    if (isLeft)
        showEverything(document);
}

void DrawingView::zoomTo(AcApDocument &document, AcDbExtents box)
{
    if (!box.isValid())
        return;
    fitViewToWidget(document);
    // The view that is changed is that of the current space, which may be seen through a viewport.
    const AcGeView shown = acedShownView(document);
    const AcGeMatrix3d frame = shown.getWorldToEyeTransform();
    box.transformBy(frame);
    const AcGeVector3d size = box.maxPoint() - box.minPoint();
    constexpr double kMargin = 1.02;
    const double height = kMargin * shown.heightFor(size.x, size.y);
    const AcGePoint3d centre = frame.inverse() * (box.minPoint() + size * 0.5);
    const QPointF pixel(shown.pixelWidth / 2.0, shown.pixelHeight / 2.0);
    const AcGePoint3d at = acedViewport(document).worldToPixel() * centre;
    AcGeView &view = document.view();
    const AcGeVector3d seen((at.x - pixel.x()) * view.pixelSize(), (pixel.y() - at.y) * view.pixelSize(),
                            0.0);
    view.centre = view.centre + view.getEyeToWorldTransform() * seen;
    if (height > 0.0 && std::isfinite(height))
        view.height = std::clamp(view.height * height / shown.height, kLeastHeight, kMostHeight);
    lookForChanges();
}

bool DrawingView::whiteBackground() const
{
    return QColor::fromRgb(QRgb(acedIntVar(kBackground))).lightness() > 127;
}

void DrawingView::setWhiteBackground(bool white)
{
    if (white == whiteBackground())
        return;
    acedSetIntVar(kBackground, white ? 0xFFFFFF : 0);
    refresh();
}

void DrawingView::wheelEvent(QWheelEvent *event)
{
    event->accept();
    if (acedFilterWindowMessage({WM_MOUSEWHEEL, effectiveWinId()}))
        return;
    // A notch is 120; touch pads send many small parts of one.
    constexpr double kPerNotch = 1.25;
    zoomBy(std::pow(kPerNotch, event->angleDelta().y() / 120.0), event->position());
}

// Mouse -------------------------------------------------------------------------------------------

void DrawingView::mousePressEvent(QMouseEvent *event)
{
    switch (event->button()) {
    case Qt::LeftButton:
        m_pointing.press(toPixel(event->position()), event->modifiers());
        break;
    case Qt::MiddleButton:
        if (AcApDocument *const document = curDoc())
            rememberView(*document);
        m_panFrom = event->pos();
        setCursor(Qt::ClosedHandCursor);
        break;
    case Qt::RightButton:
        pressRight(*event);
        break;
    default:
        event->ignore();
    }
}

void DrawingView::pressRight(QMouseEvent &event)
{
    if (!m_frontEnd.isIdle()) {
        Q_EMIT enterPressed();
        return;
    }
    AcApDocument *const document = curDoc();
    const QPointF pixel = toPixel(event.position());
    showIdleMenu(m_frontEnd, *this, event.globalPosition().toPoint(),
                 document ? acedPickAt(*document, worldAt(*document, pixel), {}) : AcDbObjectId());
}

void DrawingView::mouseMoveEvent(QMouseEvent *event)
{
    if (m_panFrom) {
        const QPoint way = event->pos() - *m_panFrom;
        m_panFrom = event->pos();
        panBy(way);
    }
    const QPointF pixel = toPixel(event->position());
    m_pointing.move(pixel);
    if (const AcApDocument *const document = curDoc())
        Q_EMIT cursorMoved(worldAt(*document, pixel));
}

void DrawingView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        m_pointing.release(toPixel(event->position()), event->modifiers());
    } else if (event->button() == Qt::MiddleButton) {
        m_panFrom.reset();
        showCursor();
    }
}

void DrawingView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::MiddleButton)
        zoomExtents();
    else if (event->button() == Qt::LeftButton && event->modifiers() == Qt::NoModifier)
        m_pointing.doubleClick(toPixel(event->position()));
    else
        mousePressEvent(event);
}

// Keyboard ----------------------------------------------------------------------------------------

/// Keys that move the view or stand for a command of the drawing itself.
bool DrawingView::pressViewKey(QKeyEvent &event)
{
    const int step = std::max(1, std::min(width(), height()) / 8);
    const bool hasControl = event.modifiers() & Qt::ControlModifier;
    AcApDocument *const document = curDoc();
    switch (event.key()) {
    case Qt::Key_Left:
        panBy({step, 0});
        return true;
    case Qt::Key_Right:
        panBy({-step, 0});
        return true;
    case Qt::Key_Up:
        panBy({0, step});
        return true;
    case Qt::Key_Down:
        panBy({0, -step});
        return true;
    case Qt::Key_Plus:
    case Qt::Key_Equal:
    case Qt::Key_Minus:
        // Without Ctrl they are typed: numbers begin with them.
        if (hasControl)
            zoomBy(event.key() == Qt::Key_Minus ? 0.8 : 1.25, rect().center());
        return hasControl;
    case Qt::Key_Delete:
        if (m_frontEnd.isIdle() && document && !document->pickSet().empty())
            m_frontEnd.giveText(QStringLiteral("_ERASE"));
        return true;
    case Qt::Key_A:
        if (hasControl && m_frontEnd.isIdle())
            selectAll();
        return hasControl;
    default:
        return false;
    }
}

/// Nobody means to change what is hidden without seeing it.
void DrawingView::selectAll()
{
    AcApDocument *const document = curDoc();
    AcEdSelectionSet all;
    if (!document || acedSSGet(QStringLiteral("A"), nullptr, nullptr, {}, all) != RTNORM)
        return;
    std::erase_if(all, [](AcDbObjectId id) {
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        return !entity || entity->subIsHidden();
    });
    document->pickSet() = std::move(all);
    refresh();
}

/// The cursor rests: what stands under it may have something to say.
bool DrawingView::showHint(QHelpEvent &event)
{
    AcApDocument *const document = curDoc();
    const AcDbObjectId id = document && m_frontEnd.isIdle() && !m_panFrom
                                ? acedPickAt(*document, worldAt(*document, toPixel(event.pos())), {})
                                : AcDbObjectId();
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    const QString hint = entity ? entity->subHint() : QString();
    // Plain text: what people wrote is no markup.
    if (hint.isEmpty())
        QToolTip::hideText();
    else
        QToolTip::showText(event.globalPos(), Qt::convertFromPlainText(hint), this);
    return true;
}

bool DrawingView::event(QEvent *event)
{
    return event->type() == QEvent::ToolTip ? showHint(static_cast<QHelpEvent &>(*event))
                                            : QWidget::event(event);
}

void DrawingView::keyPressEvent(QKeyEvent *event)
{
    if (pressViewKey(*event))
        return;
    const QString text = event->text();
    const bool isTyped = !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    if (event->key() == Qt::Key_Escape)
        m_pointing.escape();
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Space)
        Q_EMIT enterPressed();
    else if (isTyped && !text.isEmpty() && text[0].isPrint())
        Q_EMIT textTyped(text);
    else
        QWidget::keyPressEvent(event);
}

// Painting ----------------------------------------------------------------------------------------

void DrawingView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    lookForChanges();
}

void DrawingView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    refresh();
}

void DrawingView::showCursor()
{
    const AcEdPrompt *const prompt = m_frontEnd.prompt();
    setCursor(drawingCursor(prompt ? prompt->kind : AcEdPromptKind::command, whiteBackground()));
}

void DrawingView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    if (!curDoc()) {
        painter.fillRect(rect(), palette().dark());
        return;
    }
    const double ratio = devicePixelRatioF();
    painter.scale(1.0 / ratio, 1.0 / ratio);
    m_picture.paint(painter);
    m_highlight.paint(painter);
    paintPlace(painter);
    m_pointing.paint(painter);
}

void DrawingView::paintPlace(QPainter &painter) const
{
    if (m_place.empty())
        return;
    QPolygonF outline;
    const AcGeMatrix3d toPixel = pointingView(*curDoc()).worldToPixel();
    for (const AcGePoint3d &point : m_place) {
        const AcGePoint3d pixel = toPixel * point;
        outline.append({pixel.x, pixel.y});
    }
    painter.save();
    painter.setPen(QPen(kChosenPlace, 2 * devicePixelRatioF(), Qt::DashLine));
    if (outline.size() > 2)
        painter.drawPolygon(outline);
    else
        painter.drawPolyline(outline);
    painter.restore();
}

} // namespace window
