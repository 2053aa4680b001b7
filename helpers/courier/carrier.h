// Carrier: how messages get from one person to the others. A shared folder is one; so is a server.
#pragma once

#include "helpers/courier/message.h"

#include "host/base/result.h"

#include <functional>
#include <optional>
#include <vector>

namespace courier
{

struct Person {
    QString sender;
    QString name;
    bool isHere = false; ///< His courier runs now.

    friend bool operator==(const Person &, const Person &) = default;
};

/// What a carrier asks whoever uses it about messages.
struct Knowledge {
    std::function<bool(const QString &drawing, const Stamp &)> isSeen;
    /// A later message has taken the place of this one.
    std::function<bool(const QString &drawing, const Stamp &)> isOvertaken;
};

/// Errors say for people why others cannot be reached; nothing is lost by them, and everything can be tried
/// again.
class Carrier
{
public:
    virtual ~Carrier() = default;

    /// Messages of other people that were not seen yet, in any order.
    virtual base::Result<std::vector<Message>, QString> receive(const QString &drawing) = 0;

    /// Returns the message's place, above `above` and above everything of this sender. The same id published
    /// again is the same message.
    virtual base::Result<Stamp, QString> publish(const QString &drawing, const QString &id,
                                                 const QByteArray &bytes, qint64 above) = 0;

    /// The place of a message of this sender that was published, though nobody here may have noted it.
    virtual std::optional<Stamp> published(const QString &drawing, const QString &id) = 0;

    /// Tells the others what was received, clears what nobody needs any more, and tells who takes part, this
    /// person left out. Called every second or so.
    virtual base::Result<std::vector<Person>, QString> keepHouse(const QString &drawing) = 0;

    /// The drawing is not open here any more.
    virtual void leave(const QString &drawing) = 0;
};

} // namespace courier
