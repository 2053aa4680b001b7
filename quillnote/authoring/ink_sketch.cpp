#include "quillnote/authoring/ink_sketch.h"

#include "quillnote/entity/sketch.h"
#include "quillnote/frame/settings/install_folder.h"

#include "host/aced/edfrontend.h"
#include "host/aced/edmessage.h"
#include "host/aced/edsysvar.h"
#include "host/aced/edview.h"
#include "host/os/helper_library.h"
#include "host/os/temp_files.h"

#include <QFile>

#include <algorithm>

/// The library's one function. The file is all that comes back: what it returns says nothing.
using CallInkRelay = unsigned char (*)(int flag, const char16_t *path, int left, int top, int width,
                                       int height);

InkSketch::InkSketch() : m_path(os::temporaryFileName(QStringLiteral("QNS")).valueOr(QString())) {}

InkSketch::~InkSketch()
{
    QFile::remove(m_path);
}

void InkSketch::ask(const QRect &screen)
{
    const os::HelperLibrary library(installedFile(QStringLiteral("InkRelayDLL_X64.dll")));
    const auto callInkRelay = library.function<CallInkRelay>("callInkRelay");
    if (!callInkRelay) {
        acedFail(QStringLiteral("调用InkRelayDLL.dll错误."));
        return;
    }
    callInkRelay(1, reinterpret_cast<const char16_t *>(m_path.utf16()), screen.left(), screen.top(),
                 screen.width(), screen.height());
}

void InkSketch::askOver(const AcGePoint3d &corner1, const AcGePoint3d &corner2)
{
    const int viewport = acedIntVar(QStringLiteral("CVPORT"), 2);
    QPoint pixel1;
    QPoint pixel2;
    if (!acedCoordFromWorldToPixel(viewport, corner1, pixel1) ||
        !acedCoordFromWorldToPixel(viewport, corner2, pixel2))
        return;
    const QRect area(QPoint(std::min(pixel1.x(), pixel2.x()), std::min(pixel1.y(), pixel2.y())),
                     QSize(std::abs(pixel1.x() - pixel2.x()), std::abs(pixel1.y() - pixel2.y())));
    ask(area.translated(acedDrawingWindow().topLeft()));
}

bool InkSketch::isMade() const
{
    QFile file(m_path);
    const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    const auto strokes = sketch::decode(bytes);
    return !bytes.isEmpty() && (!strokes || std::ranges::any_of(strokes->strokes, &sketch::Stroke::isDrawn));
}
