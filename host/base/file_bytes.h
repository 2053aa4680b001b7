// A whole file in private memory, read in one go. What happens to the file afterwards does not matter.
#pragma once

#include "host/base/file_error.h"
#include "host/base/result.h"

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <span>
#include <string_view>

namespace base
{

/// Owns the bytes; movable. Views into them are valid while it, or what it was moved to, lives.
class FileBytes
{
public:
    FileBytes() = default;
    static FileBytes fromByteArray(QByteArrayView bytes);

    FileBytes(FileBytes &&other) noexcept;
    FileBytes &operator=(FileBytes &&other) noexcept;
    FileBytes(const FileBytes &) = delete;
    FileBytes &operator=(const FileBytes &) = delete;
    ~FileBytes();

    std::span<const char> bytes() const { return {m_data, m_size}; }
    std::string_view view() const { return {m_data, m_size}; }
    const char *data() const { return m_data; }
    std::size_t size() const { return m_size; }

private:
    friend class FileReader; ///< Fills it.
    void release();

    char *m_data = nullptr;
    std::size_t m_size = 0;
    std::size_t m_mapped = 0; ///< Length of the memory mapping.
};

enum class Pipes {
    refuse, ///< They have no end that could be counted on.
    read,   ///< Waits for the program that writes into it.
};
/// Refuses folders and devices.
Result<FileBytes, FileError> readFileBytes(const QString &path, Pipes pipes = Pipes::refuse);

} // namespace base
