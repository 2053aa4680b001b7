// Attachments: what other folders keep of a drawing or a document, and what lives exactly as long as it.
//
// There is one of each type, made when it is first asked for. The later ones, which may lean on the earlier
// ones, go first.
#pragma once

#include <algorithm>
#include <memory>
#include <typeindex>
#include <utility>
#include <vector>

namespace base
{

class Attachments
{
public:
    Attachments() = default;
    Attachments(const Attachments &) = delete;
    Attachments &operator=(const Attachments &) = delete;
    ~Attachments() { dropAll(); }

    void dropAll()
    {
        while (!m_held.empty()) {
            const Held last = std::move(m_held.back()); // May ask for others while it goes.
            m_held.pop_back();
        }
    }

    /// Null when nothing has asked for one yet.
    template <class T>
    T *find() const
    {
        const auto found = std::ranges::find(m_held, std::type_index(typeid(T)), &Held::type);
        return found == m_held.end() ? nullptr : static_cast<T *>(found->thing.get());
    }

    /// Made from `arguments` when there is none.
    template <class T, class... Arguments>
    T &get(Arguments &&...arguments)
    {
        if (T *const known = find<T>())
            return *known;
        std::unique_ptr<void, void (*)(void *)> made(new T(std::forward<Arguments>(arguments)...),
                                                     [](void *thing) { delete static_cast<T *>(thing); });
        m_held.push_back({typeid(T), std::move(made)});
        return *static_cast<T *>(m_held.back().thing.get());
    }

    template <class T>
    void drop()
    {
        const auto found = std::ranges::find(m_held, std::type_index(typeid(T)), &Held::type);
        if (found == m_held.end())
            return;
        const Held dropped = std::move(*found);
        m_held.erase(found);
    }

private:
    struct Held {
        std::type_index type;
        std::unique_ptr<void, void (*)(void *)> thing;
    };

    std::vector<Held> m_held;
};

} // namespace base
