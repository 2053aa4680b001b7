// Picture files that live from the moment a picture is taken until a mark has its bytes.
#pragma once

#include <QByteArray>
#include <QString>

/// A name in the temporary folder that nobody else has: "QNS", a unique number, ".TMP.PNG". An empty file of
/// the same name without ".PNG" reserves it. Empty when the folder takes no files.
QString newTemporaryPicture();

/// The file's bytes; empty when it cannot be read. Picture and reservation are gone afterwards.
QByteArray takeTemporaryPicture(const QString &path);
void removeTemporaryPicture(const QString &path);
