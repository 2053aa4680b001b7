// The console verbs of the process.
#include "host/aced/edverbs.h"

#include "host/base/file_error.h"
#include "host/base/host_text.h"
#include "host/base/terminal_text.h"

#include <QJsonDocument>

#include <algorithm>
#include <cerrno>
#include <cstdio>

static std::vector<AcEdVerb> &verbs()
{
    static std::vector<AcEdVerb> all;
    return all;
}

void acedRegisterVerb(AcEdVerb verb)
{
    const auto known = std::ranges::find(verbs(), verb.name, &AcEdVerb::name);
    if (known != verbs().end())
        *known = std::move(verb);
    else
        verbs().push_back(std::move(verb));
}

void acedRemoveVerb(const QString &name)
{
    std::erase_if(verbs(), [&name](const AcEdVerb &verb) { return verb.name == name; });
}

const std::vector<AcEdVerb> &acedVerbs()
{
    return verbs();
}

static std::vector<AcEdAreaOption> &areaOptions()
{
    static std::vector<AcEdAreaOption> all;
    return all;
}

void acedRegisterAreaOption(AcEdAreaOption option)
{
    acedRemoveAreaOption(option.option.name);
    areaOptions().push_back(std::move(option));
}

void acedRemoveAreaOption(const QString &name)
{
    std::erase_if(areaOptions(), [&name](const AcEdAreaOption &each) { return each.option.name == name; });
}

const std::vector<AcEdAreaOption> &acedAreaOptions()
{
    return areaOptions();
}

/// The first failure: what comes afterwards may find room again, and yet something is missing.
static int &outputError()
{
    static int systemError = 0;
    return systemError;
}

void acedPrintResult(const QString &text)
{
    const QByteArray bytes = base::terminalText(text).toUtf8();
    errno = 0;
    const bool written =
        std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stdout) == std::size_t(bytes.size()) &&
        std::fflush(stdout) == 0;
    if (!written && outputError() == 0)
        outputError() = errno != 0 ? errno : EIO;
}

QString acedResultTrouble()
{
    if (outputError() == 0)
        return {};
    return base::FileError::fromErrno(Host::tr("standard output"), outputError()).text();
}

void acedPrintResult(const QJsonObject &object)
{
    acedPrintResult(QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)) + u'\n');
}
