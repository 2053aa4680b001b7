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

extern "C" unsigned char callInkRelay(int flag, const char16_t *path, int left, int top, int width,
                                      int height)
{
    if (flag != kSketch || !path || *path == u'\0' || width <= 0 || height <= 0 || !isInWindowThread())
        return 0;
    ink::Overlay overlay(QRect(left, top, width, height), QString::fromUtf16(path));
    return overlay.run() ? 1 : 0;
}
