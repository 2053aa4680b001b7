// A freehand sketch made with the ink library: its file, and the call.
#pragma once

#include "host/acge/gepoint.h"

#include <QRect>
#include <QString>

/// A file for the library to write to, gone with this object.
class InkSketch
{
public:
    InkSketch();
    ~InkSketch();
    InkSketch(const InkSketch &) = delete;
    InkSketch &operator=(const InkSketch &) = delete;

    /// Empty when there can be no temporary file.
    const QString &path() const { return m_path; }

    /// Lets the user sketch over a part of the screen; says so when the library is missing.
    void ask(const QRect &screen);
    /// The same over the rectangle of two corners (world) in the current viewport.
    void askOver(const AcGePoint3d &corner1, const AcGePoint3d &corner2);
    /// Something was sketched: the user did not give up, and there was something to draw with. What this
    /// program cannot read counts.
    bool isMade() const;

private:
    QString m_path;
};
