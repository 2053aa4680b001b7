#include "helpers/ink_relay/ink_relay.h"

#include "helpers/ink_relay/ink_overlay.h"

#include <QApplication>
#include <QThread>

static constexpr int kSketch = 1;

static bool isInWindowThread()
{
    const auto *application = qobject_cast<QApplication *>(QCoreApplication::instance());
    return application && application->thread() == QThread::currentThread();
}

/// Runs without a display have none; nobody could draw, and nobody could end it.
static bool isOverWindow(const QRect &area)
{
    return QApplication::topLevelAt(area.center()) != nullptr;
}

extern "C" unsigned char callInkRelay(int flag, const char16_t *path, int left, int top, int width,
                                      int height)
{
    if (flag != kSketch || !path || *path == u'\0' || width <= 0 || height <= 0 || !isInWindowThread())
        return 0;
    const QRect area(left, top, width, height);
    if (!isOverWindow(area))
        return 0;
    ink::Overlay overlay(area, QString::fromUtf16(path));
    return overlay.run() ? 1 : 0;
}
