#include "quillnote/ui/phrase_bank.h"

#include "quillnote/frame/settings/install_folder.h"

#include "host/aced/edfrontend.h"
#include "host/aced/edmessage.h"
#include "host/os/helper_library.h"

#include <exception>
#include <string>

using CallPhraseBank = void (*)(std::u16string &result, const char16_t *key);
using CallAddToSelfDefLib = void (*)(const char16_t *text);
using OpenWindow = void (*)();

// Only from the install folder: a library of this name beside a drawing would be code from a stranger.
static QString libraryFile()
{
    return installedFile(QStringLiteral("PhraseBank_DLL_X64.dll"));
}

static const char16_t *wide(const QString &text)
{
    return reinterpret_cast<const char16_t *>(text.utf16());
}

static void sayNotLoaded()
{
    acedAlert(QStringLiteral("调用PhraseBank_DLL.dll错误."));
}

std::optional<QString> callPhraseBank(const QString &key)
{
    const os::HelperLibrary library(libraryFile());
    const auto call = library.function<CallPhraseBank>("callPhraseBank");
    if (!call) {
        sayNotLoaded();
        return {};
    }
    std::u16string result;
    try {
        call(result, wide(key));
    } catch (...) {
        acutPrintf(QStringLiteral("\ncallPhraseBank错误！"));
        return QString();
    }
    return QString::fromStdU16String(result);
}

bool callAddToSelfDefLib(const QString &text)
{
    const os::HelperLibrary library(libraryFile());
    const auto call = library.function<CallAddToSelfDefLib>("callAddToSelfDefLib");
    if (!call) {
        sayNotLoaded();
        return false;
    }
    try {
        call(wide(text));
    } catch (const std::exception &trouble) {
        acedAlert(QStringLiteral("存入知识库失败：%1").arg(QString::fromUtf8(trouble.what())));
        return false;
    }
    acedAlert(QStringLiteral("成功入库."));
    return true;
}

static void openWindow(const char *name)
{
    const os::HelperLibrary library(libraryFile());
    if (const auto open = library.function<OpenWindow>(name))
        open();
}

void callLibSetup()
{
    openWindow("CallLibSetup");
}

void callKeywordsDef()
{
    openWindow("KeywordsDef");
}
