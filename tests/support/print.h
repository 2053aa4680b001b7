// How GoogleTest shows Qt's strings and bytes when an expectation fails. The build includes this first in
// every test source, so that all of them agree.
#pragma once

#include <QByteArray>
#include <QString>

#include <ostream>

inline void PrintTo(const QString &text, std::ostream *out)
{
    *out << '"' << text.toUtf8().constData() << '"';
}

inline void PrintTo(const QByteArray &bytes, std::ostream *out)
{
    const QString text = QString::fromUtf8(bytes);
    const bool readable = !bytes.contains('\0') && text.toUtf8() == bytes;
    *out << (readable ? "\"" + bytes.toStdString() + "\"" : "hex " + bytes.toHex(' ').toStdString());
}
