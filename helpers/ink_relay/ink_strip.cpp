#include "helpers/ink_relay/ink_strip.h"

#include "helpers/ink_relay/ink_icons.h"

#include <QAction>
#include <QActionGroup>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <QToolButton>

#include <algorithm>

namespace ink
{

static constexpr int kHandleWidth = 14;
static constexpr int kSpacing = 2;
static constexpr int kMargin = 6;

// Dark, because it lies on white and on black drawings; the light edge shows it on black ones.
static const char *const kStyle = R"(
    ink--Strip { background: rgba(37, 40, 46, 240); border: 1px solid rgba(255, 255, 255, 70); border-radius: 8px; }
    QToolButton { color: #e8eaed; background: transparent; border: 1px solid transparent; border-radius: 5px;
                  padding: 3px; }
    QToolButton:hover { background: rgba(255, 255, 255, 30); }
    QToolButton:focus { border-color: #8ab4f8; }
    QToolButton:checked { background: rgba(138, 180, 248, 75); border-color: #8ab4f8; }
    QToolButton#done { background: #1a73e8; }
    QToolButton#done:hover { background: #3b8bf2; }
    QToolButton#done, QToolButton#cancel { padding: 3px 4px; }
    QFrame#separator { background: rgba(255, 255, 255, 45); border: none; }
)";

Kind Pen::kind() const
{
    switch (tool) {
    case Tool::rectangle:
        return fills ? Kind::filledRectangle : Kind::rectangle;
    case Tool::roundedRectangle:
        return fills ? Kind::filledRoundedRectangle : Kind::roundedRectangle;
    case Tool::ellipse:
        return fills ? Kind::filledEllipse : Kind::ellipse;
    case Tool::line:
    case Tool::freehand:
        break;
    }
    return Kind::line;
}

static void addSeparator(QHBoxLayout *row)
{
    auto *line = new QFrame;
    line->setObjectName(QStringLiteral("separator"));
    line->setFixedSize(1, 20);
    row->addSpacing(3);
    row->addWidget(line);
    row->addSpacing(3);
}

static QHBoxLayout *addRow(QVBoxLayout *rows)
{
    auto *row = new QHBoxLayout;
    row->setSpacing(kSpacing);
    rows->addLayout(row);
    return row;
}

Strip::Strip(QWidget *overlay) : QFrame(overlay)
{
    setAttribute(Qt::WA_NoMousePropagation); // Nothing is drawn through the strip.
    setStyleSheet(QString::fromLatin1(kStyle));
    setCursor(Qt::ArrowCursor);
    setAccessibleName(tr("绘图工具"));
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(kHandleWidth, kMargin, kMargin, kMargin);
    rows->setSpacing(kSpacing);
    QHBoxLayout *first = addRow(rows);
    addTools(first);
    addSeparator(first);
    addWidths(first);
    addSeparator(first);
    addSteps(first);
    QHBoxLayout *second = addRow(rows);
    addColors(second);
    second->addStretch();
    addEndings(second);
    adjustSize();
}

void Strip::follow(const Document &document)
{
    m_undo->setEnabled(document.canUndo());
    m_redo->setEnabled(document.canRedo());
    m_clear->setEnabled(!document.isEmpty());
}

// Buttons -----------------------------------------------------------------------------------------

QAction *Strip::addAction(QHBoxLayout *row, const QIcon &icon, const QString &name,
                          const QList<QKeySequence> &keys)
{
    auto *action = new QAction(icon, name, this);
    action->setShortcuts(keys);
    action->setToolTip(
        keys.isEmpty() ? name : tr("%1（%2）").arg(name, keys.front().toString(QKeySequence::NativeText)));
    QWidget::addAction(action);
    auto *button = new QToolButton;
    button->setDefaultAction(action);
    button->setIconSize(QSize(20, 20));
    button->setAccessibleName(name);
    row->addWidget(button);
    return action;
}

template <class Take>
QAction *Strip::addChoice(QHBoxLayout *row, QActionGroup *group, const QIcon &icon, const QString &name,
                          const QList<QKeySequence> &keys, Take take)
{
    QAction *action = addAction(row, icon, name, keys);
    action->setCheckable(true);
    action->setActionGroup(group);
    connect(action, &QAction::triggered, this, take);
    return action;
}

void Strip::addTools(QHBoxLayout *row)
{
    struct Choice {
        Tool tool;
        QString name;
        Qt::Key key;
        QIcon icon;
    };
    const Choice choices[] = {
        {Tool::freehand, tr("手绘"), Qt::Key_P, freehandIcon()},
        {Tool::line, tr("直线"), Qt::Key_L, shapeIcon(Kind::line)},
        {Tool::rectangle, tr("矩形"), Qt::Key_R, shapeIcon(Kind::rectangle)},
        {Tool::roundedRectangle, tr("圆角矩形"), Qt::Key_O, shapeIcon(Kind::roundedRectangle)},
        {Tool::ellipse, tr("椭圆"), Qt::Key_E, shapeIcon(Kind::ellipse)},
    };
    auto *group = new QActionGroup(this);
    for (const Choice &choice : choices) {
        const Tool tool = choice.tool;
        QAction *action = addChoice(row, group, choice.icon, choice.name, {choice.key}, [this, tool] {
            m_pen.tool = tool;
            m_fill->setEnabled(tool != Tool::line && tool != Tool::freehand);
        });
        action->setChecked(tool == m_pen.tool);
    }
    m_fill = addAction(row, fillIcon(), tr("填充"), {Qt::Key_F});
    m_fill->setCheckable(true);
    m_fill->setEnabled(false);
    connect(m_fill, &QAction::toggled, this, [this](bool fills) { m_pen.fills = fills; });
}

void Strip::addWidths(QHBoxLayout *row)
{
    const QString names[] = {tr("细线 0.20 毫米"), tr("中线 0.35 毫米"), tr("粗线 0.50 毫米"),
                             tr("特粗线 0.70 毫米")};
    auto *group = new QActionGroup(this);
    int width = 1;
    for (const QString &name : names) {
        QAction *action = addChoice(row, group, penWidthIcon(width), name, {Qt::Key(Qt::Key_0 + width)},
                                    [this, width] { m_pen.width = width; });
        action->setChecked(width == m_pen.width);
        ++width;
    }
}

void Strip::addColors(QHBoxLayout *row)
{
    // The drawing's own first colours, orange (30) and both sides of colour 7.
    const std::pair<QRgb, QString> colors[] = {
        {0xFFFF0000, tr("红色")}, {0xFFFF7F00, tr("橙色")}, {0xFFFFFF00, tr("黄色")},
        {0xFF00FF00, tr("绿色")}, {0xFF00FFFF, tr("青色")}, {0xFF0000FF, tr("蓝色")},
        {0xFFFF00FF, tr("品红")}, {0xFFFFFFFF, tr("白色")}, {0xFF000000, tr("黑色")},
    };
    auto *group = new QActionGroup(this);
    for (const auto &[color, name] : colors) {
        QAction *action =
            addChoice(row, group, colorIcon(color), name, {}, [this, taken = color] { m_pen.color = taken; });
        action->setChecked(color == m_pen.color);
    }
}

void Strip::addSteps(QHBoxLayout *row)
{
    m_undo = addAction(row, undoIcon(), tr("撤销"), QKeySequence::keyBindings(QKeySequence::Undo));
    m_redo = addAction(row, redoIcon(), tr("重做"), {Qt::CTRL | Qt::Key_Y, Qt::CTRL | Qt::SHIFT | Qt::Key_Z});
    m_clear = addAction(row, clearIcon(), tr("清空"), {Qt::Key_Delete});
    connect(m_undo, &QAction::triggered, this, &Strip::undoAsked);
    connect(m_redo, &QAction::triggered, this, &Strip::redoAsked);
    connect(m_clear, &QAction::triggered, this, &Strip::clearAsked);
}

void Strip::addEndings(QHBoxLayout *row)
{
    const auto addEnding = [&](const QIcon &icon, const QString &name, const QList<QKeySequence> &keys,
                               const QString &objectName) {
        QAction *action = addAction(row, icon, name, keys);
        auto *button = qobject_cast<QToolButton *>(row->itemAt(row->count() - 1)->widget());
        button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        button->setObjectName(objectName);
        return action;
    };
    connect(addEnding(cancelIcon(), tr("取消"), {Qt::Key_Escape}, QStringLiteral("cancel")),
            &QAction::triggered, this, &Strip::cancelAsked);
    connect(addEnding(doneIcon(), tr("完成"), {Qt::Key_Return, Qt::Key_Enter}, QStringLiteral("done")),
            &QAction::triggered, this, &Strip::doneAsked);
}

// Dragging ----------------------------------------------------------------------------------------

void Strip::paintEvent(QPaintEvent *event)
{
    QFrame::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 255, 255, 110));
    for (int row = -2; row <= 2; ++row) {
        for (const double x : {4.5, 8.5})
            painter.drawEllipse(QPointF(x, height() / 2.0 + 5.0 * row), 1.1, 1.1);
    }
}

void Strip::mousePressEvent(QMouseEvent *event)
{
    m_heldAt = event->position().toPoint();
}

void Strip::mouseMoveEvent(QMouseEvent *event)
{
    const QPoint wanted = mapToParent(event->position().toPoint()) - m_heldAt;
    const QSize room = parentWidget()->size() - size();
    move(std::clamp(wanted.x(), 0, std::max(room.width(), 0)),
         std::clamp(wanted.y(), 0, std::max(room.height(), 0)));
}

} // namespace ink
