// Message boxes: the installed one, or lines of the script.
#include "host/aced/edmessage.h"

#include "host/aced/edcommands.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/base/host_text.h"

#include <array>

static AcEdMessageBox *&installedBox()
{
    static AcEdMessageBox *box = nullptr;
    return box;
}

void acedSetMessageBox(AcEdMessageBox *box)
{
    installedBox() = box;
}

static bool offers(AcEdButtons buttons, AcEdButton button)
{
    switch (button) {
    case AcEdButton::ok:
        return buttons == AcEdButtons::ok || buttons == AcEdButtons::okCancel;
    case AcEdButton::cancel:
        return buttons == AcEdButtons::okCancel || buttons == AcEdButtons::yesNoCancel;
    case AcEdButton::yes:
    case AcEdButton::no:
        return buttons == AcEdButtons::yesNo || buttons == AcEdButtons::yesNoCancel;
    }
    return false;
}

/// The button that changes nothing.
static AcEdButton carefulButton(AcEdButtons buttons)
{
    if (offers(buttons, AcEdButton::cancel))
        return AcEdButton::cancel;
    return buttons == AcEdButtons::yesNo ? AcEdButton::no : AcEdButton::ok;
}

static AcEdButton askScript(const QString &text, AcEdButtons buttons)
{
    static constexpr std::array<std::pair<const char *, AcEdButton>, 4> kWords{{
        {"ok", AcEdButton::ok},
        {"cancel", AcEdButton::cancel},
        {"yes", AcEdButton::yes},
        {"no", AcEdButton::no},
    }};
    acutPrintf(QLatin1Char('\n') + text);
    const auto line = acedFrontEnd().dialogLine(text);
    for (const auto &[word, button] : kWords) {
        if (line && offers(buttons, button) &&
            line->trimmed().compare(QLatin1String(word), Qt::CaseInsensitive) == 0)
            return button;
    }
    if (line)
        acedFrontEnd().refuseAnswer(Host::tr("消息框没有按钮“%1”: %2").arg(*line, text));
    acedEditor()->requestCancel();
    acedEditor()->requestQuit();
    return carefulButton(buttons);
}

AcEdButton acedAsk(const QString &text, AcEdButtons buttons)
{
    return installedBox() ? installedBox()->show(text, buttons) : askScript(text, buttons);
}

void acedAlert(const QString &text)
{
    acedAsk(text, AcEdButtons::ok);
}

void acedFail(const QString &text)
{
    acedRefuse(text);
    if (!acedFrontEnd().isScripted())
        acedAlert(text);
}
