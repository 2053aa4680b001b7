// Pictures of marks as the view shows them, for the web report: files in a folder "PNG" beside the drawing.
#pragma once

#include "host/acdb/dbid.h"

#include <QString>

class MarkViewPictures
{
public:
    /// Numbers go on above the drawing's last mark number; no picture of an earlier report is overwritten.
    MarkViewPictures();

    /// Brings the mark on the screen and exports the whole view. The file's path, also when the picture did
    /// not come about; empty when the drawing has no name.
    QString take(AcDbObjectId mark);

private:
    QString nextPath();

    int m_last;
};
