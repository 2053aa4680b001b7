#include "host/base/file_bytes.h"

#include "host/base/path_name.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <utility>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace base
{

static constexpr std::size_t kMinimumMapping = 64 * 1024;
static constexpr std::size_t kHugePage = 2 * 1024 * 1024;

/// Fills a FileBytes. The memory is mapped, not allocated: it arrives without being cleared by us, it
/// grows without being copied, and large pages spare most of the page faults of a large file.
class FileReader
{
public:
    /// Room for at least `size` bytes in all; false when there is no memory.
    bool reserve(std::size_t size)
    {
        const std::size_t wanted = std::max(size, kMinimumMapping);
        if (wanted <= m_result.m_mapped)
            return true;
        void *memory = m_result.m_data ? ::mremap(m_result.m_data, m_result.m_mapped, wanted, MREMAP_MAYMOVE)
                                       : ::mmap(nullptr, wanted, PROT_READ | PROT_WRITE,
                                                MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED)
            return false;
        m_result.m_data = static_cast<char *>(memory);
        m_result.m_mapped = wanted;
        if (wanted >= kHugePage)
            ::madvise(memory, wanted, MADV_HUGEPAGE); // A hint; kernels without it are only slower.
        return true;
    }

    /// Reads to the end whatever the size was expected to be: files grow, and pipes have none.
    int readAll(int file, std::size_t expected)
    {
        // One byte more than expected, so that the end is seen without growing.
        if (!reserve(expected + 1))
            return ENOMEM;
        for (;;) {
            if (m_result.m_size == m_result.m_mapped && !reserve(m_result.m_mapped * 2))
                return ENOMEM;
            const ssize_t count =
                ::read(file, m_result.m_data + m_result.m_size, m_result.m_mapped - m_result.m_size);
            if (count == 0)
                return 0;
            if (count > 0)
                m_result.m_size += static_cast<std::size_t>(count);
            else if (errno != EINTR)
                return errno;
        }
    }

    void copy(QByteArrayView bytes)
    {
        const auto size = static_cast<std::size_t>(bytes.size());
        if (!reserve(size))
            throw std::bad_alloc();
        if (size != 0)
            std::memcpy(m_result.m_data, bytes.data(), size);
        m_result.m_size = size;
    }

    FileBytes take() { return std::move(m_result); }

private:
    FileBytes m_result;
};

FileBytes FileBytes::fromByteArray(QByteArrayView bytes)
{
    FileReader reader;
    reader.copy(bytes);
    return reader.take();
}

FileBytes::FileBytes(FileBytes &&other) noexcept
    : m_data(std::exchange(other.m_data, nullptr)), m_size(std::exchange(other.m_size, 0)),
      m_mapped(std::exchange(other.m_mapped, 0))
{
}

FileBytes &FileBytes::operator=(FileBytes &&other) noexcept
{
    if (this != &other) {
        release();
        m_data = std::exchange(other.m_data, nullptr);
        m_size = std::exchange(other.m_size, 0);
        m_mapped = std::exchange(other.m_mapped, 0);
    }
    return *this;
}

FileBytes::~FileBytes()
{
    release();
}

void FileBytes::release()
{
    if (m_data)
        ::munmap(m_data, m_mapped);
}

/// The device that is always empty does no harm.
static bool isReadable(const struct stat &status, Pipes pipes)
{
    const bool isEmptyDevice = S_ISCHR(status.st_mode) && status.st_rdev == makedev(1, 3);
    const bool isPipe = S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode);
    return S_ISREG(status.st_mode) || (pipes == Pipes::read && (isPipe || isEmptyDevice));
}

Result<FileBytes, FileError> readFileBytes(const QString &path, Pipes pipes)
{
    // Opening a pipe to look at it must not wait for a writer.
    const int waiting = pipes == Pipes::read ? 0 : O_NONBLOCK;
    const int file = ::open(encodePath(path).constData(), O_RDONLY | O_CLOEXEC | O_NOCTTY | waiting);
    if (file < 0)
        return Failure{FileError::fromErrno(path, errno)};
    struct stat status;
    int systemError = ::fstat(file, &status) == 0 ? 0 : errno;
    FileReader reader;
    if (systemError == 0 && !isReadable(status, pipes)) {
        ::close(file);
        return Failure{FileError{FileError::Code::notAFile, 0, path}};
    }
    if (systemError == 0)
        systemError = reader.readAll(file, static_cast<std::size_t>(std::max<off_t>(status.st_size, 0)));
    ::close(file);
    if (systemError != 0)
        return Failure{FileError::fromErrno(path, systemError)};
    return reader.take();
}

} // namespace base
