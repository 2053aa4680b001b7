// Writing a file so that a crash at any moment leaves either the old content or the new.
#pragma once

#include "host/base/file_error.h"
#include "host/base/file_stamp.h"
#include "host/base/result.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace base
{

/// Looks at the file that is about to be replaced; false when it is not the one that was meant.
using MayReplace = std::function<bool(const QString &path)>;

struct WrittenFile {
    FileStamp stamp;
    std::uint64_t digest = 0; ///< contentDigest(); only for callers that gave a MayReplace.
    QStringList notKept;      ///< What the new file could not take over of the old one, in words for people.
};

/// Collects the new content in a temporary file beside the target (".quill-3f2a91c0.tmp"). commit() puts it
/// in the target's place; without commit() the destructor removes it and the target stays untouched. The file
/// is locked (flock) for as long as its writer lives: that tells it from one that a killed program left.
class AtomicFileWriter
{
public:
    /// Refuses a target that is read-only, lies in a read-only or missing folder, or is no plain file.
    /// A symbolic link is followed: the file that it names is replaced, the link stays. The new file
    /// has owner, group, permissions and extended attributes of the one it replaces, where the system lets
    /// it.
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

    /// Everything written so far stands in the temporary file afterwards and is on its way to the disk. Gives
    /// the file's path: to look at the content before it counts, read it there.
    Result<QString, FileError> finishWriting();

    /// Flushes the file to the disk, renames it over the target, flushes the folder. Reports the first
    /// failure since open(); the target then has its old content (or, when only flushing the folder
    /// failed, already the new one). Called once; nothing may be written after it.
    ///
    /// With `mayReplace` a target that exists is replaced only when it says yes, and what went was what it
    /// saw; otherwise the error is `changed`.
    Result<WrittenFile, FileError> commit(const MayReplace &mayReplace = {});

private:
    AtomicFileWriter() = default;
    void flush(QByteArrayView more);
    void fail(int systemError);
    void discard();
    std::optional<FileError> replaceTarget(const MayReplace &mayReplace);

    int m_file = -1;        ///< Closed by commit().
    QString m_path;         ///< As the caller spelled it.
    QByteArray m_target;    ///< Path with links resolved, as the system spells it.
    QByteArray m_temporary; ///< Empty when there is nothing to remove.
    QByteArray m_pending;
    QStringList m_notKept;
    std::optional<FileError> m_error;
};

/// The whole content in one call.
Result<void, FileError> writeFileAtomically(const QString &path, QByteArrayView content);

/// Removes the temporary files that killed programs left in a folder; those of living writers stay. Where the
/// file system knows no locks only files older than a day count as left. Returns how many were removed.
int removeLeftTemporaryFiles(const QString &folder);

} // namespace base
