#include "host/base/file_error.h"

#include "host/base/host_text.h"

#include <cerrno>
#include <system_error>

namespace base
{

static FileError::Code codeOf(int systemError)
{
    switch (systemError) {
    case ENOENT:
    case ENOTDIR:
        return FileError::Code::notFound;
    case EACCES:
    case EPERM:
        return FileError::Code::accessDenied;
    case EROFS:
        return FileError::Code::readOnly;
    case EISDIR:
        return FileError::Code::notAFile;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return FileError::Code::noSpace;
    default:
        return FileError::Code::other;
    }
}

FileError FileError::fromErrno(const QString &path, int systemError)
{
    return {codeOf(systemError), systemError, path};
}

static QString reason(const FileError &error)
{
    switch (error.code) {
    case FileError::Code::notFound:
        return Host::tr("not found");
    case FileError::Code::accessDenied:
        return Host::tr("access denied");
    case FileError::Code::readOnly:
        return Host::tr("the file or its folder is read-only");
    case FileError::Code::notAFile:
        return Host::tr("not a plain file");
    case FileError::Code::noSpace:
        return Host::tr("no space left");
    case FileError::Code::changed:
        return Host::tr(
            "somebody else has written the file meanwhile, it is not overwritten; open it again, or "
            "save under another name");
    case FileError::Code::other:
        break;
    }
    if (error.systemError != 0)
        return QString::fromStdString(std::generic_category().message(error.systemError));
    return Host::tr("cannot be used");
}

QString FileError::text() const
{
    return path + QStringLiteral(": ") + reason(*this);
}

} // namespace base
