#include "host/os/helper_library.h"

#include <QDir>
#include <QFile>

#include <dlfcn.h>

namespace os
{

// Not QLibrary: it tries names with prefixes and suffixes before it takes one like "Relay_X64.dll".
HelperLibrary::HelperLibrary(const QString &path)
{
    // The loader would look for a bare name along its own search path, and take none for the program itself.
    const QByteArray name = QFile::encodeName(QDir::current().absoluteFilePath(path));
    m_handle = ::dlopen(name.constData(), RTLD_NOW | RTLD_LOCAL);
    if (!m_handle)
        m_error = QString::fromLocal8Bit(::dlerror());
}

HelperLibrary::~HelperLibrary()
{
    if (m_handle)
        ::dlclose(m_handle);
}

void *HelperLibrary::entry(const char *name) const
{
    return m_handle ? ::dlsym(m_handle, name) : nullptr;
}

} // namespace os
