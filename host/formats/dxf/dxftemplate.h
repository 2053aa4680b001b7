// The drawing that a new document starts from: an empty AC1032 file, metric, A3.
#pragma once

#include <QByteArray>

QByteArray newDrawingDxf();
