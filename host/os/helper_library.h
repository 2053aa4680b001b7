// Libraries beside the program whose functions are looked up by name while it runs.
#pragma once

#include <QString>

#include <type_traits>

namespace os
{

/// One library, loaded for as long as the object lives.
class HelperLibrary
{
public:
    /// Loads the file of exactly this name: no suffix is added and no other folder searched.
    explicit HelperLibrary(const QString &path);
    HelperLibrary(const HelperLibrary &) = delete;
    HelperLibrary &operator=(const HelperLibrary &) = delete;
    /// Functions that were got from the library must not be called any more.
    ~HelperLibrary();

    bool isLoaded() const { return m_handle != nullptr; }
    /// Why it was not loaded, in the system's words; empty when it was.
    QString error() const { return m_error; }

    /// An exported name; null when the library is not loaded or does not have it.
    void *entry(const char *name) const;
    /// The same as a function: `function<int (*)(int)>("twice")`.
    template <class Function>
    requires(std::is_pointer_v<Function> &&std::is_function_v<std::remove_pointer_t<Function>>) Function
        function(const char *name)
    const { return reinterpret_cast<Function>(entry(name)); }

private:
    void *m_handle = nullptr;
    QString m_error;
};

} // namespace os
