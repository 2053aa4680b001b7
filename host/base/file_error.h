// Why a file could not be read or written.
#pragma once

#include <QString>

namespace base
{

struct FileError {
    enum class Code {
        notFound,     ///< The file, or the folder it should go into, is not there.
        accessDenied, ///< The user may not read or write it.
        readOnly,     ///< The file or its folder is marked read-only.
        notAFile,     ///< A folder, a device or the like.
        noSpace,      ///< Disk full or quota used up.
        changed,      ///< It is no longer the file that was to be replaced.
        other,
    };

    Code code = Code::other;
    int systemError = 0; ///< errno, 0 when the refusal is our own.
    QString path;

    /// From `errno` as a system call left it.
    static FileError fromErrno(const QString &path, int systemError);
    /// One English sentence without a full stop: "drawing.dxf: No space left on device".
    QString text() const;
};

} // namespace base
