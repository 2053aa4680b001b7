// The console verbs of the process.
#include "host/aced/edverbs.h"

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

void acedPrintResult(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stdout);
    std::fflush(stdout);
}
