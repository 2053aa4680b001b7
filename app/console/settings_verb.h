// "settings": the user's settings from the command line.
#pragma once

#include <QStringList>

namespace console
{

/// Each prints its results or what is wrong, and gives the exit status; a value that is not there is trouble.
int listSettings(const QString &key, bool json);
int getSetting(const QString &key, const QString &name, bool json);

enum class SettingType { byLook, number, text };
/// `byLook` stores a number for a value that is one (0 to 4294967295, or -1 for the largest), a text for
/// every other.
int setSetting(const QString &key, const QString &name, const QString &value, SettingType type);
int removeSetting(const QString &key, const QString &name);

/// To a file that does not exist yet, unless `overwrite`; "-" is standard output.
int exportSettingsTo(const QString &file, bool overwrite);
/// "-" is standard input.
///
/// Values that make programs run are left out and told, unless their names are among those `wanted`.
int importSettingsFrom(const QString &file, const QStringList &wanted);

} // namespace console
