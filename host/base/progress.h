// How long work tells how far it has come, and hears that it should stop.
#pragma once

#include <QElapsedTimer>
#include <QString>

#include <functional>

namespace base
{

/// Takes the share that is done, 0 to 1. False: the work stops and leaves things as they were. May be empty.
using Progress = std::function<bool(double share)>;

/// True when the work goes on.
inline bool report(const Progress &progress, double share)
{
    return !progress || progress(share);
}

/// Tells somebody how far work has come, at most 30 times a second, and when it has ended.
class ProgressTeller
{
public:
    /// Hears of the share that is done, 0 to 1, below 0 when nobody knows; and once, with nothing for `what`,
    /// that the work has ended. False: it is to stop.
    using Listener = std::function<bool(const QString &what, double share)>;

    ProgressTeller(Listener listener, QString what);
    ~ProgressTeller();
    ProgressTeller(const ProgressTeller &) = delete;
    ProgressTeller &operator=(const ProgressTeller &) = delete;

    /// False for good once the listener wants the work to stop.
    bool goesOn(double share);

private:
    Listener m_listener;
    QString m_what;
    QElapsedTimer m_sinceTold; ///< Not valid before the first time.
    bool m_isStopped = false;
};

} // namespace base
