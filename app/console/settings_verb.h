// "settings": the user's settings from the command line.
#pragma once

#include <QStringList>

namespace console
{

/// Each prints its results or what is wrong, and gives the exit status; a value that is not there is trouble.
int listSettings(const QString &key, bool json);
int getSetting(const QString &key, const QString &name, bool json);

enum class SettingType { fitting, number, text };
/// A number lies in -2147483648 to 4294967295; negative ones are stored as their 32 bits. `fitting` stores
/// what the owner of the setting has declared. A type or value that the owner would not read is refused; so
/// is a name that nobody has declared, unless it is `foreign`: then a number is stored when the value looks
/// like one.
int setSetting(const QString &key, const QString &name, const QString &value, SettingType type, bool foreign);
int removeSetting(const QString &key, const QString &name);

/// To a file that does not exist yet, unless `overwrite`; "-" is standard output.
int exportSettingsTo(const QString &file, bool overwrite);
/// "-" is standard input.
///
/// Values that make programs run are left out and told, unless their names are among those `wanted`.
int importSettingsFrom(const QString &file, const QStringList &wanted);

} // namespace console
