#include "app/window/status_line.h"

#include "app/window/icons.h"
#include "app/window/unit_text.h"
#include "host/acdb/dbentity.h"
#include "host/aced/edspace.h"
#include "host/aced/edsysvar.h"

#include <QApplication>
#include <QEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QToolButton>

#include <cmath>

namespace window
{

namespace
{

/// While it lives, keys and clicks reach nothing but one button, and timers rest: work is under way, and
/// nothing may begin in the middle of it. Esc presses the button.
class OnlyThis : public QObject
{
public:
    explicit OnlyThis(QToolButton *button) : m_button(button) { qApp->installEventFilter(this); }
    ~OnlyThis() override { qApp->removeEventFilter(this); }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        // Windows pass events on to their widgets, which are asked here again.
        if (watched->isWindowType() && event->type() != QEvent::Close)
            return false;
        switch (event->type()) {
        case QEvent::KeyPress:
            if (static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape)
                m_button->click();
            return true;
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove:
            return watched != m_button;
        case QEvent::KeyRelease:
        case QEvent::Wheel:
        case QEvent::ContextMenu:
        case QEvent::Shortcut:
        case QEvent::ShortcutOverride:
        case QEvent::InputMethod:
        case QEvent::DragEnter:
        case QEvent::DragMove:
        case QEvent::Drop:
        case QEvent::Close:
        case QEvent::Timer:
            return true;
        default:
            return false;
        }
    }

private:
    QToolButton *m_button;
};

} // namespace

static QLabel *label(QWidget *parent, const QString &name)
{
    auto *const made = new QLabel(parent);
    made->setAccessibleName(name);
    made->setToolTip(name);
    made->setTextFormat(Qt::PlainText);
    return made;
}

StatusLine::StatusLine(QWidget *parent)
    : QStatusBar(parent), m_place(label(this, tr("光标坐标"))),
      m_facts(label(this, tr("布局、视图扭转与选择"))), m_busy(label(this, tr("正在绘制图形"))),
      m_service(label(this, tr("与其他人同步"))), m_work(label(this, tr("正在进行的工作"))),
      m_progress(new QProgressBar(this)), m_stop(new QToolButton(this)), m_background(new QToolButton(this))
{
    const int wide = fontMetrics().averageCharWidth();
    m_place->setMinimumWidth(wide * 34);
    m_progress->setMaximumWidth(wide * 24);
    m_progress->setTextVisible(false);
    m_progress->setAccessibleName(tr("进度"));
    m_stop->setText(tr("停止"));
    m_stop->setToolTip(tr("停止正在进行的工作 (Esc)"));
    m_busy->setText(tr("正在绘制…"));
    m_background->setIcon(icon("background"));
    m_background->setAutoRaise(true);
    m_background->setAccessibleName(tr("黑白背景"));
    m_background->setToolTip(tr("在黑色背景与白色背景之间切换"));
    m_background->setStatusTip(m_background->toolTip());
    for (QWidget *widget :
         std::initializer_list<QWidget *>{m_busy, m_work, m_progress, m_stop, m_service, m_facts})
        addPermanentWidget(widget);
    addPermanentWidget(m_background);
    addWidget(m_place);
    for (QWidget *widget : std::initializer_list<QWidget *>{m_busy, m_work, m_progress, m_stop, m_service})
        widget->hide();
    connect(m_stop, &QToolButton::clicked, this, &StatusLine::stopWanted);
    connect(m_background, &QToolButton::clicked, this, &StatusLine::backgroundWanted);
}

QString StatusLine::placeText() const
{
    return m_place->text();
}

QString StatusLine::factsText() const
{
    return m_facts->text();
}

int StatusLine::hiddenCount(const AcApDocument &document)
{
    const AcDbDatabase &database = *document.database();
    const AcDbObjectId space = acedShownSpace(document);
    if (m_counted == &database && m_countedSpace == space && m_changeCount == database.changeCount())
        return m_hidden;
    m_counted = &database;
    m_countedSpace = space;
    m_changeCount = database.changeCount();
    m_hidden = 0;
    const BlockContents *const contents = database.blockContents(space);
    for (const std::uint32_t index : contents ? contents->entities : std::vector<std::uint32_t>()) {
        AcDbStub *const stub = database.stub(index);
        // Only custom entities can be hidden, and opening a million others takes long.
        if (!acdbKindClass(stub->kind, true)->application())
            continue;
        const AcDbObjectPointer<AcDbEntity> entity(AcDbObjectId(stub), AcDb::kForRead);
        m_hidden += entity && entity->subIsHidden();
    }
    return m_hidden;
}

/// Grips and highlighting may cover the number of a mark that is chosen.
static QString nameOfOnly(const std::vector<AcDbObjectId> &pickSet)
{
    const AcDbObjectPointer<AcDbEntity> entity(pickSet.size() == 1 ? pickSet.front() : AcDbObjectId(),
                                               AcDb::kForRead);
    const QString name = entity ? entity->subHint().section(u'\n', 0, 0) : QString();
    return name.isEmpty() ? name : QStringLiteral(" (%1)").arg(name);
}

static QString factsOf(AcApDocument &document, int hidden)
{
    QStringList facts{acedIsModelSpaceCurrent(document) && document.enteredViewport().sheet.isNull()
                          ? StatusLine::tr("模型")
                          : acedCurrentLayoutName(document)};
    const double degrees = document.view().twist * 180.0 / kGePi;
    if (std::abs(degrees) > 1e-9)
        facts += StatusLine::tr("视图扭转 %1°").arg(QString::number(degrees, 'g', 6));
    if (!document.pickSet().empty())
        facts += StatusLine::tr("已选择 %n 个", nullptr, int(document.pickSet().size())) +
                 nameOfOnly(document.pickSet());
    if (hidden > 0)
        facts += StatusLine::tr("%n 个标签已隐藏", nullptr, hidden);
    return facts.join(QStringLiteral("   "));
}

void StatusLine::refresh()
{
    m_facts->setText(curDoc() ? factsOf(*curDoc(), hiddenCount(*curDoc())) : QString());
    if (!curDoc())
        m_place->clear();
}

void StatusLine::showPlace(const AcGePoint3d &world)
{
    m_place->setText(curDoc() ? window::placeText(world) : QString());
}

void StatusLine::showBusy(bool busy)
{
    m_busy->setVisible(busy);
}

void StatusLine::showService(const QString &text)
{
    m_service->setText(text);
    m_service->setVisible(!text.isEmpty());
}

void StatusLine::showProgress(const QString &what, double share)
{
    const bool isOver = what.isEmpty();
    const bool begins = !isOver && m_stop->isHidden();
    for (QWidget *widget : std::initializer_list<QWidget *>{m_work, m_progress, m_stop})
        widget->setVisible(!isOver);
    if (isOver)
        return;
    m_work->setText(what);
    m_progress->setRange(0, share < 0 ? 0 : 1000);
    m_progress->setValue(int(share * 1000));
    if (begins)
        m_lastLook.start();
    letStop();
}

/// Looks for a press of the stop button, not too often.
void StatusLine::letStop()
{
    constexpr int kMilliseconds = 40;
    if (m_lastLook.isValid() && m_lastLook.elapsed() < kMilliseconds)
        return;
    const OnlyThis guard(m_stop);
    QCoreApplication::processEvents();
    m_lastLook.restart();
}

} // namespace window
