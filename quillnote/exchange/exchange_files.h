// Where the exchange of marks keeps its files: the synchronisation folder and names that are not in use.
#pragma once

#include <QString>

/// What mark files in the synchronisation folder begin and end with.
inline constexpr char16_t kMarkFilePrefix[] = u"QnSysnning_";
inline constexpr char16_t kMarkFileEnding[] = u".quillNote";

/// A path that no file has: folder, prefix, digits, ending. An empty folder is the system's temporary one; a
/// missing folder is made, and when that fails the user is told and the temporary folder serves. An ending
/// without a dot gets one; an empty ending stays empty.
QString unusedFileName(QString folder, const QString &prefix, const QString &ending);

enum class FolderTest { none, write };

/// The folder of the setting "synFileUploadPath", with a slash at its end. Without a setting it is a folder
/// of the user's data, which is made and stored. With a write test a folder that takes no file loses its
/// setting and the user is told, five times in a run at most. Empty when there is no folder to use.
QString synchronisationFolder(FolderTest test = FolderTest::none);
