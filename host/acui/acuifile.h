// The file dialog, which asks for folders as well.
#pragma once

#include "host/aced/edinput.h"

enum AcUiFileFlag : int {
    kAcUiOpenFile = 0, ///< An existing file.
    kAcUiSaveFile = 1, ///< A new file, or one to be replaced.
    kAcUiFolder = 2,   ///< An existing folder; endings do not apply.
};

/// Asks for a file. `extensions` are the wanted name endings, separated by semicolons
/// ("Quillnote3;Quillnote");
/// "*" or empty is any. A name to save under that has no ending gets the first one. RTNORM with the absolute
/// path; RTCAN when the user leaves the dialog.
///
/// In a scripted run the line "@file "path"" answers ("@cancel" leaves it); a relative path counts from the
/// folder that the program was started in. A file to open or a
/// folder that does not exist is refused.
int acedGetFileD(const QString &title, const QString &defaultPath, const QString &extensions, int flags,
                 QString &path);
