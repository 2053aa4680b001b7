// "plot": layouts of a drawing as pages of a PDF file.
#pragma once

#include "app/console/documents.h"
#include "app/console/output_paths.h"

namespace console
{

struct PlotOptions {
    QStringList files;
    QString output;
    Overwrite overwrite = Overwrite::no;
    QString layout;   ///< Empty: the one that the drawing was saved in.
    bool all = false; ///< Every paper layout, in tab order.
    QString paper;    ///< Empty: as the drawing was set up.
    bool monochrome = false;
    bool json = false;
};

/// The exit status.
int writePlot(const PlotOptions &options);

} // namespace console
