// The console verbs of the process.
#include "host/aced/edverbs.h"

#include <QJsonDocument>

#include <algorithm>
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

void acedPrintResult(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stdout);
    std::fflush(stdout);
}

void acedPrintResult(const QJsonObject &object)
{
    acedPrintResult(QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)) + u'\n');
}
