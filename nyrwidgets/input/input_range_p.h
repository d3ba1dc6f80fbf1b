#pragma once

// The inclusive range of a typed field, in the type of its value.

#include <any>
#include <optional>

namespace nyr::input {

template <class T>
struct Range
{
    std::optional<T> minimum;
    std::optional<T> maximum;

    void Set(const T& lowest, const T& highest)
    {
        minimum = lowest;
        maximum = highest;
    }
    void Clear()
    {
        minimum.reset();
        maximum.reset();
    }
    // -1 below, +1 above, 0 inside (T needs operator< only).
    int Side(const std::any& value) const
    {
        const T& v = std::any_cast<const T&>(value);
        if (minimum && v < *minimum)
            return -1;
        if (maximum && *maximum < v)
            return 1;
        return 0;
    }
    // The bound as a value of the field; empty without one.
    std::any Bound(bool upper) const
    {
        const std::optional<T>& bound = upper ? maximum : minimum;
        return bound ? std::any(*bound) : std::any();
    }
};

}  // namespace nyr::input
