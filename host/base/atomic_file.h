// Writing a file so that a crash at any moment leaves either the old content or the new.
#pragma once

#include "host/base/file_error.h"
#include "host/base/result.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace base
{

/// Collects the new content in a temporary file beside the target. commit() puts it in the target's
/// place; without commit() the destructor removes it and the target stays untouched.
class AtomicFileWriter
{
public:
    /// Refuses a target that is read-only, lies in a read-only or missing folder, or is no plain file.
    /// A symbolic link is followed: the file that it names is replaced, the link stays. The new file
    /// has the permission bits of the one it replaces.
    static Result<AtomicFileWriter, FileError> open(const QString &path);

    AtomicFileWriter(AtomicFileWriter &&other) noexcept;
    AtomicFileWriter &operator=(AtomicFileWriter &&other) noexcept;
    AtomicFileWriter(const AtomicFileWriter &) = delete;
    AtomicFileWriter &operator=(const AtomicFileWriter &) = delete;
    ~AtomicFileWriter();

    /// Small pieces are gathered, large ones go straight to the file. After a failure nothing more is
    /// written; commit() reports it. Long writers look at failed() to stop early.
    void write(QByteArrayView bytes);
    bool failed() const { return m_error.has_value(); }

    /// Flushes the file to the disk, renames it over the target, flushes the folder. Reports the first
    /// failure since open(); the target then has its old content (or, when only flushing the folder
    /// failed, already the new one). Called once; nothing may be written after it.
    Result<void, FileError> commit();

private:
    AtomicFileWriter() = default;
    void flush(QByteArrayView more);
    void fail(int systemError);
    void discard();

    int m_file = -1;        ///< Closed by commit().
    QString m_path;         ///< As the caller spelled it.
    QByteArray m_target;    ///< Path with links resolved, as the system spells it.
    QByteArray m_temporary; ///< Empty when there is nothing to remove.
    QByteArray m_pending;
    std::optional<FileError> m_error;
};

/// The whole content in one call.
Result<void, FileError> writeFileAtomically(const QString &path, QByteArrayView content);

} // namespace base
