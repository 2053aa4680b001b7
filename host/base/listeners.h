// Listeners: who is told of something, in the order in which they came. A listener may add or remove any of
// them, itself too, while they are being told: who was removed is told no more, who was added is told from
// the next time on.
#pragma once

#include <algorithm>
#include <vector>

namespace base
{

template <class Listener>
class Listeners
{
public:
    /// Adding one that is there already does nothing.
    void add(Listener *listener)
    {
        if (!has(listener))
            m_all.push_back(listener);
    }
    void remove(Listener *listener) { std::erase(m_all, listener); }
    bool has(const Listener *listener) const { return std::ranges::find(m_all, listener) != m_all.end(); }

    /// Calls `event` with each of them.
    template <class Event>
    void tell(Event event) const
    {
        const std::vector<Listener *> told = m_all;
        for (Listener *const listener : told) {
            if (has(listener))
                event(*listener);
        }
    }

private:
    std::vector<Listener *> m_all;
};

} // namespace base
