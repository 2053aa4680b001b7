#include "host/base/progress.h"

namespace base
{

ProgressTeller::ProgressTeller(Listener listener, QString what)
    : m_listener(std::move(listener)), m_what(std::move(what))
{
}

ProgressTeller::~ProgressTeller()
{
    if (m_sinceTold.isValid())
        m_listener({}, 1.0);
}

bool ProgressTeller::goesOn(double share)
{
    constexpr qint64 kMilliseconds = 33;
    if (m_isStopped || !m_listener || (m_sinceTold.isValid() && m_sinceTold.elapsed() < kMilliseconds))
        return !m_isStopped;
    m_sinceTold.start();
    m_isStopped = !m_listener(m_what, share);
    return !m_isStopped;
}

} // namespace base
