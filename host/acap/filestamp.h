// What tells whether a file on the disk is still the one that was read: who it is, its size and its time. The
// content is not looked at.
#pragma once

#include <QString>

#include <cstdint>
#include <optional>

struct AcApFileStamp {
    std::uint64_t device = 0;
    std::uint64_t inode = 0; ///< Another one when the file was replaced.
    std::uint64_t size = 0;
    std::int64_t seconds = 0;
    std::int64_t nanoseconds = 0;

    friend bool operator==(const AcApFileStamp &, const AcApFileStamp &) = default;
};

/// None when there is no such file.
std::optional<AcApFileStamp> acapFileStamp(const QString &path);
