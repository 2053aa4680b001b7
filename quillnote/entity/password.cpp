#include "quillnote/entity/password.h"

#include "quillnote/frame/settings/start_up_settings.h"

#include "host/aced/edinput.h"
#include "host/base/text_codec.h"

#include <QCryptographicHash>

static PasswordPrompt passwordPrompt;

PasswordState &passwordState()
{
    static PasswordState state;
    return state;
}

PasswordPrompt setPasswordPrompt(PasswordPrompt prompt)
{
    return std::exchange(passwordPrompt, std::move(prompt));
}

QString hashPassword(const QString &password)
{
    // The code page of the systems that the first marks were protected on. What it lacks it would make
    // question marks, and every password of as many such characters would open the mark.
    bool isLossless = false;
    QByteArray bytes = base::TextCodec("ANSI_936").encode(password, isLossless);
    if (!isLossless)
        bytes = password.toUtf8();
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex());
}

bool sameHash(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

const QString &unlockedHash()
{
    return passwordState().unlocked;
}

static bool refuse(const QString &chinese, const QString &english)
{
    acedRefuse(startUpSettings().chineseVersion ? chinese : english);
    return false;
}

bool checkPassword(const QString &hash)
{
    PasswordState &state = passwordState();
    if (sameHash(state.lastEntered, hash) || hash.isEmpty())
        return true;
    const std::optional<QString> typed = passwordPrompt ? passwordPrompt() : std::nullopt;
    if (!typed)
        return false;
    const QString password = typed->trimmed();
    if (password.isEmpty())
        return refuse(QStringLiteral("密码不能为空！"), QStringLiteral("Password null, Error!"));
    state.lastEntered = hashPassword(password);
    if (!sameHash(state.lastEntered, hash))
        return refuse(QStringLiteral("密码错误！"), QStringLiteral("Password Error!"));
    state.unlocked = state.lastEntered;
    return true;
}

bool mayChangeProtected(const QString &hash)
{
    return hash.isEmpty() || sameHash(hash, unlockedHash()) || checkPassword(hash);
}

bool mayDragProtected(const QString &hash)
{
    constexpr int kMostFailures = 5;
    int &failures = passwordState().failedDrags;
    if (hash.isEmpty())
        return true;
    if (failures >= kMostFailures)
        return false;
    const bool allowed = mayChangeProtected(hash);
    failures += allowed ? 0 : 1;
    return allowed;
}
