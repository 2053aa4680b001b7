#include "quillnote/ui/review_bar.h"

#include "quillnote/frame/settings/settings.h"

#include <QApplication>
#include <QScrollArea>

static constexpr int kLeastWidth = 205;
static constexpr int kMostWidth = 800;
static constexpr int kHeight = 800;

int reviewBarWidth(int stored)
{
    return stored < kLeastWidth || stored > kMostWidth ? kLeastWidth : stored;
}

CMyDockControlBar::CMyDockControlBar()
    : CAcUiDockControlBar(QStringLiteral("review"), QStringLiteral("Quillnote")), m_panel(new CMarkWnd2(this))
{
    setAllowedAreas(Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea);
    setFloatingLimits({300, 600}, {900, 1366});
    // A low screen, or a large font, must not make the window higher than the screen.
    auto *const frame = new QScrollArea(this);
    frame->setFrameShape(QFrame::NoFrame);
    frame->setWidgetResizable(true);
    frame->setMinimumWidth(m_panel->minimumSizeHint().width());
    frame->setWidget(m_panel);
    setWidget(frame);
    connect(qApp, &QApplication::focusChanged, frame, [this, frame](QWidget *, QWidget *now) {
        if (now && m_panel->isAncestorOf(now))
            frame->ensureWidgetVisible(now);
    });
    resize(kLeastWidth, kHeight);
    constexpr int kPause = 300; // Milliseconds.
    m_resized.setSingleShot(true);
    m_resized.setInterval(kPause);
    connect(&m_resized, &QTimer::timeout, this, &CMyDockControlBar::keepWidth);
}

CMyDockControlBar::~CMyDockControlBar()
{
    if (m_resized.isActive())
        keepWidth();
}

void CMyDockControlBar::open()
{
    dockAt(Qt::LeftDockWidgetArea, reviewBarWidth(settings::number(u"DockControlBarWidth")));
    m_panel->show();
}

// A palette that nobody sees has no width that anybody chose.
void CMyDockControlBar::resizeEvent(QResizeEvent *event)
{
    CAcUiDockControlBar::resizeEvent(event);
    if (acuiMainFrame() && isVisible())
        m_resized.start();
}

void CMyDockControlBar::keepWidth() const
{
    if (settings::number(u"DockControlBarWidth") != width())
        settings::setNumber(u"DockControlBarWidth", width());
}

void CMyDockControlBar::hideEvent(QHideEvent *event)
{
    CAcUiDockControlBar::hideEvent(event);
    Q_EMIT closed();
}
