// What tells whether a file on the disk is still the one that was read: who it is, its size and its time; and
// a digest of the content for where size and time cannot be trusted.
#pragma once

#include <QString>

#include <cstdint>
#include <optional>
#include <string_view>

namespace base
{

struct FileStamp {
    std::uint64_t device = 0;
    std::uint64_t inode = 0; ///< Another one when the file was replaced.
    std::uint64_t size = 0;
    std::int64_t seconds = 0;
    std::int64_t nanoseconds = 0;
    std::int64_t changed =
        0; ///< When content, rights or names changed last, nanoseconds; 0: unknown. Nobody can
           ///< set it back. Not compared: a file that got other rights is still the same one.

    /// So little older than now that a clock may have given a later writing the same time.
    bool isYoung() const;

    friend bool operator==(const FileStamp &a, const FileStamp &b)
    {
        return a.device == b.device && a.inode == b.inode && a.size == b.size && a.seconds == b.seconds &&
               a.nanoseconds == b.nanoseconds;
    }
};

/// None when there is no such file.
std::optional<FileStamp> fileStamp(const QString &path);

/// For comparing within one process only.
std::uint64_t contentDigest(std::string_view bytes);
/// The same of a file; none when it cannot be read.
std::optional<std::uint64_t> fileDigest(const QString &path);

} // namespace base
