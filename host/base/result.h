// Result<T, E>: a value, or a typed error that says why there is none.
#pragma once

#include "host/base/assert.h"

#include <optional>
#include <type_traits>
#include <utility>
#include <variant>

namespace base
{

/// Wraps an error so that `return base::Failure{error};` ends a function that returns a Result.
template <class E>
struct Failure {
    E error;
};
template <class E>
Failure(E) -> Failure<E>; // clang before 17 does not deduce aggregates.

/// Either a T or an E. Asking for the one that is not there is a programmer's fault and aborts.
template <class T, class E>
class [[nodiscard]] Result
{
public:
    using Value = T;
    using Error = E;

    template <class U = T>
    requires std::is_convertible_v<U &&, T> Result(U &&value)
        : m_state(std::in_place_index<0>, std::forward<U>(value))
    {
    }
    template <class F>
    requires std::is_convertible_v<F &&, E> Result(Failure<F> failure)
        : m_state(std::in_place_index<1>, std::move(failure.error))
    {
    }

    bool ok() const { return m_state.index() == 0; }
    explicit operator bool() const { return ok(); }

    T &value() &
    {
        QUILL_ASSERT(ok());
        return *std::get_if<0>(&m_state);
    }
    const T &value() const &
    {
        QUILL_ASSERT(ok());
        return *std::get_if<0>(&m_state);
    }
    T &&value() &&
    {
        QUILL_ASSERT(ok());
        return std::move(*std::get_if<0>(&m_state));
    }
    T valueOr(T fallback) const { return ok() ? value() : std::move(fallback); }

    T &operator*() & { return value(); }
    const T &operator*() const & { return value(); }
    T &&operator*() && { return std::move(*this).value(); }
    T *operator->() { return &value(); }
    const T *operator->() const { return &value(); }

    const E &error() const
    {
        QUILL_ASSERT(!ok());
        return *std::get_if<1>(&m_state);
    }

private:
    std::variant<T, E> m_state;
};

/// Success without a value: `return {};` succeeds.
template <class E>
class [[nodiscard]] Result<void, E>
{
public:
    using Value = void;
    using Error = E;

    Result() = default;
    template <class F>
    requires std::is_convertible_v<F &&, E> Result(Failure<F> failure) : m_error(std::move(failure.error)) {}

    bool ok() const { return !m_error.has_value(); }
    explicit operator bool() const { return ok(); }
    const E &error() const
    {
        QUILL_ASSERT(!ok());
        return *m_error;
    }

private:
    std::optional<E> m_error;
};

} // namespace base
