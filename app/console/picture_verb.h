// "picture": a drawing, or a part of it, as a PNG file.
#pragma once

#include "app/console/documents.h"
#include "app/console/output_paths.h"
#include "host/acgi/display/display.h"

#include <map>

namespace console
{

struct PictureOptions {
    QStringList files;
    QString output; ///< Of the one file.
    Overwrite overwrite = Overwrite::no;
    QString size;                     ///< "1600x1000" when empty.
    QString window;                   ///< "x1,y1,x2,y2"; empty: everything visible.
    QString layout;                   ///< Empty: the space that the drawing was saved in.
    QString background;               ///< "white", "black", "#rrggbb"; empty: white.
    std::map<QString, QString> areas; ///< Given options of modules that name an area, with their values.
    bool lineWeights = false;
    bool json = false;
};

/// The exit status.
int writePicture(const PictureOptions &options);

/// Says on standard error what could not be drawn, a line for each kind.
void printUndrawn(const acgi::PaintReport &report);
/// The same and the count of what was drawn as members of a JSON object.
void addToJson(QJsonObject &object, const acgi::PaintReport &report);

} // namespace console
