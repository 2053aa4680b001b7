#include "host/base/path_name.h"

#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

#include <cstdlib>
#include <memory>

#include <fcntl.h>
#include <sys/stat.h>

namespace base
{

static constexpr char16_t kFirstByte = 0xDC80; // Stands for the byte 0x80.
static constexpr char16_t kLastByte = 0xDCFF;

QByteArray encodePath(QStringView path)
{
    QByteArray bytes;
    qsizetype begin = 0;
    for (qsizetype at = 0; at < path.size(); ++at) {
        const char16_t unit = path[at].unicode();
        const bool isPaired = at > 0 && path[at - 1].isHighSurrogate();
        if (unit < kFirstByte || unit > kLastByte || isPaired)
            continue;
        bytes += path.sliced(begin, at - begin).toUtf8();
        bytes += char(unit - kFirstByte + 0x80);
        begin = at + 1;
    }
    return bytes + path.sliced(begin).toUtf8();
}

/// Length of the UTF-8 sequence at the front; 0 when there is none.
static qsizetype sequenceLength(QByteArrayView bytes)
{
    const auto lead = static_cast<unsigned char>(bytes.front());
    const qsizetype length = lead < 0x80 ? 1 : lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    return length != 0 && length <= bytes.size() && bytes.first(length).isValidUtf8() ? length : 0;
}

QString decodePath(QByteArrayView bytes)
{
    if (bytes.isValidUtf8())
        return QString::fromUtf8(bytes);
    QString path;
    while (!bytes.isEmpty()) {
        const qsizetype length = sequenceLength(bytes);
        if (length == 0)
            path += QChar(char16_t(kFirstByte + static_cast<unsigned char>(bytes.front()) - 0x80));
        else
            path += QString::fromUtf8(bytes.first(length));
        bytes = bytes.sliced(length == 0 ? 1 : length);
    }
    return path;
}

bool openForReading(QFile &file, const QString &path)
{
    const int descriptor = ::open(encodePath(path).constData(), O_RDONLY | O_CLOEXEC);
    return descriptor >= 0 &&
           file.open(descriptor, QIODevice::ReadOnly | QIODevice::Unbuffered, QFileDevice::AutoCloseHandle);
}

bool pathExists(const QString &path)
{
    struct stat status;
    return ::stat(encodePath(path).constData(), &status) == 0;
}

bool isPlainFile(const QString &path)
{
    struct stat status;
    return ::stat(encodePath(path).constData(), &status) == 0 && S_ISREG(status.st_mode);
}

bool isFolder(const QString &path)
{
    struct stat status;
    return ::stat(encodePath(path).constData(), &status) == 0 && S_ISDIR(status.st_mode);
}

QString fullPath(const QString &path)
{
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(encodePath(path).constData(), nullptr),
                                                           &std::free);
    return real ? decodePath(real.get()) : QFileInfo(path).absoluteFilePath();
}

} // namespace base
