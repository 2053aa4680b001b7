// What happens when somebody starts the program for the first time.
#pragma once

#include "host/os/settings_store.h"

namespace window
{

/// A store that holds nothing yet gets the settings that modules ship for new users ("first-settings.txt" in
/// a module's folder under share/), and those for the language of the window ("first-settings_zh_CN.txt"). To
/// be called before modules are loaded, which read their settings then.
void takeFirstSettings(os::SettingsStore &store, const QString &language);

} // namespace window
