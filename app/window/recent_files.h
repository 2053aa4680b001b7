// The drawings that were opened last, and the other things that the window keeps between runs.
#pragma once

#include <QByteArray>
#include <QStringList>

namespace window
{

/// Absolute paths, the last one opened first.
class RecentFiles
{
public:
    static QStringList list();
    static void add(const QString &path);
    static void remove(const QString &path);
};

/// Opaque bytes under a name; empty when there are none.
QByteArray keptState(const QString &name);
void keepState(const QString &name, const QByteArray &state);

} // namespace window
