#include "quillnote/authoring/freehand_mark.h"

#include "quillnote/authoring/create_mark.h"
#include "quillnote/frame/settings/install_folder.h"
#include "quillnote/frame/settings/settings.h"

#include "host/acap/docman.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edmessage.h"
#include "host/aced/edsysvar.h"
#include "host/aced/edview.h"
#include "host/os/helper_library.h"
#include "host/os/temp_files.h"

#include <QFile>

namespace
{

/// A file for the library to write to, gone with this object. The path is empty when there can be none.
class SketchFile
{
public:
    SketchFile() : m_path(os::temporaryFileName(QStringLiteral("QNS")).valueOr(QString())) {}
    ~SketchFile() { QFile::remove(m_path); }
    SketchFile(const SketchFile &) = delete;
    SketchFile &operator=(const SketchFile &) = delete;

    const QString &path() const { return m_path; }

private:
    QString m_path;
};

} // namespace

/// The library's one function. The file is all that comes back: what it returns says nothing.
using CallInkRelay = unsigned char (*)(int flag, const char16_t *path, int left, int top, int width,
                                       int height);

static void letUserSketch(const QString &path, const QRect &window)
{
    const os::HelperLibrary library(installedFile(QStringLiteral("InkRelayDLL_X64.dll")));
    const auto callInkRelay = library.function<CallInkRelay>("callInkRelay");
    if (!callInkRelay) {
        acedAlert(QStringLiteral("调用InkRelayDLL.dll错误."));
        return;
    }
    callInkRelay(1, reinterpret_cast<const char16_t *>(path.utf16()), window.left(), window.top(),
                 window.width(), window.height());
}

/// False for a viewport that shows no place of the world.
static bool visibleCorners(const QSize &window, NewMark &request)
{
    const int viewport = acedIntVar(QStringLiteral("CVPORT"), 2);
    if (!acedCoordFromPixelToWorld(viewport, QPoint(0, window.height()), request.corner1) ||
        !acedCoordFromPixelToWorld(viewport, QPoint(window.width(), 0), request.corner2))
        return false;
    request.corner1.z = 0.0;
    request.corner2.z = 0.0;
    return true;
}

void QN3_EasyDraw()
{
    const QRect window = acedDrawingWindow();
    NewMark request;
    if (!visibleCorners(window.size(), request)) {
        acutPrintf(QStringLiteral("\n当前视口无法手绘。"));
        return;
    }
    const SketchFile sketch;
    if (sketch.path().isEmpty()) {
        acutPrintf(QStringLiteral("\n临时文件夹不可写，无法手绘。"));
        return;
    }
    letUserSketch(sketch.path(), window);
    request.reviewerName = settings::text(u"name");
    request.sketchFile = sketch.path();
    request.isFreehand = true;
    if (createMark(*acdbCurDwg(), request).isNull())
        acutPrintf(QStringLiteral("\n无法在本图中创建评图标签。"));
    acedFrontEnd().focusDrawing();
}
