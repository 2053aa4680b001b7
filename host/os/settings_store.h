// Per-user settings: named numbers and texts under key paths, shared by all running programs of a user.
#pragma once

#include "host/base/file_error.h"
#include "host/base/result.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

namespace os
{

class SettingsDatabase;

/// A store in one file. Key paths ("Software\Quillnote3") and value names ignore letter case and keep
/// the spelling under which they were first written. A number and a text are different things: asking
/// for the one where the other is stored finds nothing.
///
/// Several programs may have the same file open; each read sees what the others have written. One
/// store object belongs to one thread. No failure throws or ends the program: reads find nothing,
/// writes return false, and the reason goes once to the message handler.
class SettingsStore
{
public:
    /// Opens or creates the file, and its folder. A file that is damaged is renamed (its name gets the
    /// ending ".damaged-" and the time), reported, and replaced by an empty one.
    explicit SettingsStore(const QString &file);
    ~SettingsStore();
    SettingsStore(const SettingsStore &) = delete;
    SettingsStore &operator=(const SettingsStore &) = delete;

    /// The user's own store, opened at the first call: "quillnote/settings.sqlite" in the folder for
    /// configuration files (XDG_CONFIG_HOME).
    static SettingsStore &user();
    static QString userFile();

    /// Receives one sentence for each trouble with a store. The default prints to standard error.
    using MessageHandler = std::function<void(const QString &)>;
    static void setMessageHandler(MessageHandler handler);

    /// False when the file could not be opened: reads find nothing, writes return false.
    bool isOpen() const;

    std::optional<std::uint32_t> number(QStringView key, QStringView name) const;
    std::optional<QString> text(QStringView key, QStringView name) const;

    /// Replace the value whatever its type. A text ends at its first zero character. False when nothing
    /// was stored: the file is not writable, or key or name holds a control character.
    bool setNumber(QStringView key, QStringView name, std::uint32_t value);
    bool setText(QStringView key, QStringView name, QStringView value);
    /// True when the value is gone, also when it was never there.
    bool remove(QStringView key, QStringView name);

    struct Entry {
        QString key;
        QString name;
        std::variant<std::uint32_t, QString> value;

        friend bool operator==(const Entry &, const Entry &) = default;
    };
    /// The values under `key` and the keys below it, in order of key and name; everything for an empty key.
    std::vector<Entry> entries(QStringView key = {}) const;
    QStringList keys() const;
    /// Stores all entries or, when it returns false, none.
    bool setEntries(const std::vector<Entry> &entries);

    enum class Type { number, text };
    /// What the owner of a value says about it, so that a typed word is stored by name as what the
    /// owner reads. A name with "%d" stands for the numbers first to last.
    struct Declaration {
        QString key;
        QString name;
        Type type = Type::number;
        int first = 0;
        int last = 0;
    };
    /// A value that is declared again takes the new type. Binds nobody who calls setNumber or setText.
    void declare(const Declaration &value);
    std::optional<Type> declaredType(QStringView key, QStringView name) const;

private:
    std::map<std::pair<QString, QString>, Type> m_types; ///< By key and name, case folded.
    std::unique_ptr<SettingsDatabase> m_database;
};

/// The settings as a text file; docs/formats/settings.md describes it.
QByteArray exportSettings(const SettingsStore &store, QStringView key = {});

struct SettingsImportError {
    int line = 0; ///< 1 is the first; 0 when the text is sound but the store refused it.
    QString reason;
};
struct ImportedSettings {
    int count = 0;
    QStringList leftOut; ///< Key and name of each value that was not taken.
};
/// True for a value that makes a program load or run something: records of modules, the install folder.
bool makesProgramsRun(const SettingsStore::Entry &entry);
/// Adds the values of the text to the store. Nothing is stored when a line is wrong. A text may come from
/// anybody: a value that makes programs run is left out, unless its name is among those `wanted`.
base::Result<ImportedSettings, SettingsImportError> importSettings(SettingsStore &store, QByteArrayView text,
                                                                   const QStringList &wanted = {});

enum class Hive { currentUser };

/// The four calls through which the review module reads and writes the user's settings.
/// 0 when the value is missing or a text.
std::uint32_t ReadNumber(Hive hive, QStringView key, QStringView name);
/// The text lies in one shared buffer of 4096 code units and is overwritten by the next call. Empty
/// when the value is missing, a number, or longer than 4095 units.
const char16_t *ReadText(Hive hive, QStringView key, QStringView name);
/// -1 is stored as 0xFFFFFFFF.
bool WriteNumber(Hive hive, QStringView key, QStringView name, std::uint32_t number);
bool WriteText(Hive hive, QStringView key, QStringView name, QStringView text);

} // namespace os
