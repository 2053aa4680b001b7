// What a file carries beside its content: owner, group, mode, access list, extended attributes.
#pragma once

#include <QByteArray>
#include <QStringList>

struct stat;

namespace base
{

/// Gives the new, open `file` all of it from the file `model`, as far as the system lets this user. What
/// could not be kept is returned in words for people. Where the group is another one, it may no more than
/// everybody.
QStringList copyFileRights(int file, const QByteArray &model, const struct stat &status);

} // namespace base
