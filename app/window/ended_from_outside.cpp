#include "app/window/ended_from_outside.h"

#include <QSocketNotifier>
#include <QTimer>

#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace window
{

static constexpr std::array kSignals{SIGTERM, SIGHUP, SIGINT};

/// A handler may do next to nothing: it writes the signal's number into a pipe that the event loop reads.
static std::array<int, 2> &signalPipe()
{
    static std::array<int, 2> ends{-1, -1};
    return ends;
}

static void note(int signal)
{
    const int before = errno;
    const auto number = static_cast<char>(signal);
    [[maybe_unused]] const ssize_t written = ::write(signalPipe()[1], &number, 1);
    errno = before;
}

EndedFromOutside::EndedFromOutside(std::function<bool()> leave) : m_leave(std::move(leave))
{
    if (::pipe2(signalPipe().data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return; // Signals end the process as ever.
    m_notifier = new QSocketNotifier(signalPipe()[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &EndedFromOutside::hear);
    struct sigaction action = {};
    action.sa_handler = note;
    action.sa_flags = SA_RESTART | SA_RESETHAND;
    for (const int signal : kSignals) {
        struct sigaction present = {};
        // The program may have been started with a signal ignored (nohup).
        if (::sigaction(signal, nullptr, &present) == 0 && present.sa_handler != SIG_IGN)
            ::sigaction(signal, &action, nullptr);
    }
}

EndedFromOutside::~EndedFromOutside()
{
    if (!m_notifier)
        return;
    for (const int signal : kSignals) {
        struct sigaction present = {};
        if (::sigaction(signal, nullptr, &present) == 0 && present.sa_handler == note)
            ::signal(signal, SIG_DFL);
    }
    delete m_notifier;
    for (int &end : signalPipe())
        ::close(std::exchange(end, -1));
}

void EndedFromOutside::hear()
{
    unsigned char number = 0;
    if (::read(signalPipe()[0], &number, 1) != 1 || m_signal != 0)
        return;
    m_signal = number;
    for (const int signal : kSignals) // The next one does not wait.
        ::signal(signal, SIG_DFL);
    tryToLeave();
}

void EndedFromOutside::tryToLeave()
{
    if (m_leave())
        ::raise(m_signal);
    else
        QTimer::singleShot(50, this, &EndedFromOutside::tryToLeave);
}

} // namespace window
