// Pictures that live from the moment they are taken until a mark has their bytes: as files in the temporary
// folder, and where that is full or missing in memory, under a name all the same.
#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

/// A name in the temporary folder that nobody else has: "QNS", a unique number, ".TMP.PNG". An empty file of
/// the same name without ".PNG" reserves it. Empty when the folder takes no files.
QString newTemporaryPicture();

/// Keeps the picture as a PNG under a name of its own; the name is empty when there is no memory for it.
QString keepTemporaryPicture(const QImage &image);
/// The bytes; empty when there are none.
QByteArray temporaryPicture(const QString &path);
/// The same. Picture and reservation are gone afterwards.
QByteArray takeTemporaryPicture(const QString &path);
void removeTemporaryPicture(const QString &path);
