#include "host/formats/dxf/dxftemplate.h"

#include "host/base/assert.h"

#include <QFile>

QByteArray newDrawingDxf()
{
    QFile file(QStringLiteral(":/dxf/new_drawing.dxf"));
    const bool opened = file.open(QIODevice::ReadOnly);
    QUILL_ASSERT(opened);
    return file.readAll();
}
