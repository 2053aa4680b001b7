// The session is ended from outside: SIGTERM (logging out, shutting down), SIGHUP (the terminal is gone),
// SIGINT (Ctrl+C in it). There is time for what must not be lost, none for questions.
#pragma once

#include <QObject>

#include <functional>

class QSocketNotifier;

namespace window
{

class EndedFromOutside : public QObject
{
    Q_OBJECT

public:
    /// `leave` saves what must not be lost and says whether it could; otherwise it is asked again a little
    /// later. Then the signal ends the process as it would have. A second signal ends it at once. One object
    /// at a time.
    explicit EndedFromOutside(std::function<bool()> leave);
    ~EndedFromOutside() override;

private:
    void hear();
    void tryToLeave();

    std::function<bool()> m_leave;
    QSocketNotifier *m_notifier = nullptr;
    int m_signal = 0;
};

} // namespace window
