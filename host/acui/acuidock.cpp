#include "host/acui/acuidock.h"

#include <QMainWindow>

static QPointer<QMainWindow> &mainFrame()
{
    static QPointer<QMainWindow> frame;
    return frame;
}

void acuiSetMainFrame(QMainWindow *frame)
{
    mainFrame() = frame;
}

QMainWindow *acuiMainFrame()
{
    return mainFrame();
}

CAcUiDockControlBar::CAcUiDockControlBar(const QString &name, const QString &title)
    : QDockWidget(title, acuiMainFrame())
{
    setObjectName(QStringLiteral("dock.") + name);
    connect(this, &QDockWidget::topLevelChanged, this, &CAcUiDockControlBar::limitSize);
}

void CAcUiDockControlBar::dockAt(Qt::DockWidgetArea area, int width)
{
    if (QMainWindow *const frame = acuiMainFrame()) {
        setFloating(false);
        frame->addDockWidget(area, this);
        limitSize();
        show();
        frame->resizeDocks({this}, {width}, Qt::Horizontal);
    } else {
        limitSize();
        resize(width, height());
        show();
    }
    raise();
}

void CAcUiDockControlBar::setFloatingLimits(const QSize &smallest, const QSize &largest)
{
    m_smallest = smallest;
    m_largest = largest;
    limitSize();
}

void CAcUiDockControlBar::limitSize()
{
    const bool limited = isFloating() && acuiMainFrame() && m_largest.isValid();
    setMinimumSize(limited ? m_smallest : QSize(0, 0));
    setMaximumSize(limited ? m_largest : QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX));
}
