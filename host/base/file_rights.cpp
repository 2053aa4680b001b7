#include "host/base/file_rights.h"

#include "host/base/host_text.h"

#include <QList>

#include <algorithm>

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace base
{

static constexpr const char *kAccessList = "system.posix_acl_access";

static QList<QByteArray> attributeNames(const QByteArray &path)
{
    QByteArray names;
    const ssize_t size = ::listxattr(path.constData(), nullptr, 0);
    if (size > 0) {
        names.resize(size);
        names.truncate(std::max<ssize_t>(::listxattr(path.constData(), names.data(), std::size_t(size)), 0));
    }
    QList<QByteArray> list = names.split('\0');
    list.removeAll(QByteArray());
    return list;
}

static QByteArray attribute(const QByteArray &path, const QByteArray &name)
{
    const ssize_t size = ::getxattr(path.constData(), name.constData(), nullptr, 0);
    QByteArray value(std::max<ssize_t>(size, 0), '\0');
    const ssize_t got =
        ::getxattr(path.constData(), name.constData(), value.data(), std::size_t(value.size()));
    value.truncate(std::max<ssize_t>(got, 0));
    return value;
}

static bool has(int file, const QByteArray &name, const QByteArray &value)
{
    QByteArray present(value.size() + 1, '\0');
    const ssize_t size = ::fgetxattr(file, name.constData(), present.data(), std::size_t(present.size()));
    return size == value.size() && present.startsWith(value);
}

/// Seals of the content that the system makes anew itself.
static bool isSeal(const QByteArray &name)
{
    return name == "security.ima" || name == "security.evm";
}

static void copyAttributes(int file, const QByteArray &model, bool groupKept, QStringList &notKept)
{
    bool allKept = true;
    for (const QByteArray &name : attributeNames(model)) {
        const QByteArray value = attribute(model, name);
        const bool isAccessList = name == kAccessList;
        if (isSeal(name) || has(file, name, value))
            continue;
        const bool kept =
            (groupKept || !isAccessList) &&
            ::fsetxattr(file, name.constData(), value.constData(), std::size_t(value.size()), 0) == 0;
        if (!kept && isAccessList)
            notKept.append(Host::tr("the access list"));
        else
            allKept = allKept && kept;
    }
    if (!allKept)
        notKept.append(Host::tr("extended attributes"));
}

QStringList copyFileRights(int file, const QByteArray &model, const struct stat &status)
{
    constexpr uid_t kSameUser = ~uid_t(0);
    constexpr gid_t kSameGroup = ~gid_t(0);
    QStringList notKept;
    struct stat fresh;
    const bool isKnown = ::fstat(file, &fresh) == 0;
    const bool groupKept =
        (isKnown && fresh.st_gid == status.st_gid) || ::fchown(file, kSameUser, status.st_gid) == 0;
    const bool ownerKept =
        (isKnown && fresh.st_uid == status.st_uid) || ::fchown(file, status.st_uid, kSameGroup) == 0;
    if (!ownerKept)
        notKept.append(Host::tr("the owner"));
    if (!groupKept)
        notKept.append(Host::tr("the group"));
    ::fremovexattr(file, kAccessList); // The folder may have given it one.
    mode_t mode = status.st_mode & (S_IRWXU | S_IRWXG | S_IRWXO);
    if (!groupKept)
        mode = (mode & ~mode_t(S_IRWXG)) | (mode & ((mode & S_IRWXO) << 3));
    if (::fchmod(file, mode) != 0)
        notKept.append(Host::tr("the permissions"));
    copyAttributes(file, model, groupKept, notKept);
    if (status.st_nlink > 1)
        notKept.append(Host::tr("the tie to its other names (hard links), which keep the old content"));
    return notKept;
}

} // namespace base
