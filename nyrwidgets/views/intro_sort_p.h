#pragma once

// The views' sort: an unstable introsort that stays inside its range whatever
// the comparison answers.
//
// The report view's less-than rule answers true when an element is compared
// with itself under an ascending first key (kept on purpose), and an
// application's item comparison may be inconsistent. A sort whose inner loops
// rely on the pivot stopping them (as common library sorts do) can then run
// past the end of the range. Here:
//  - no element is ever compared with itself: the pivot is moved out of the
//    range being partitioned and compared only with the other elements, and
//    insertion and heap sort compare distinct positions only;
//  - every scan and search is bounded by the range, not by the answers, so
//    even a comparison that answers at random cannot step outside it.
// With a strict weak order the result is sorted; with any other answers it
// is some permutation of the input, never a crash.
//
// Shape: ranges of more than 32 elements are split around the median of
// three; when the recursion budget (2 log2 n) runs out the range is heap
// sorted; ranges of 32 elements or fewer are insertion sorted.

#include <algorithm>
#include <bit>
#include <cstddef>
#include <iterator>
#include <utility>

namespace nyr::views_detail {

inline constexpr std::ptrdiff_t kIntroSortShortRange = 32;
inline constexpr std::ptrdiff_t kAheadDistance = 16;

// The default for `ahead`: nothing to fetch.
struct NoAhead
{
    template <class T>
    void operator()(const T&) const
    {
    }
};

template <class It, class Less>
void InsertionSort(It first, It last, Less& less)
{
    if (last - first < 2)
        return;
    for (It i = first + 1; i != last; ++i) {
        auto value = std::move(*i);
        It hole = i;
        // `value` has left the range, so it meets only other elements.
        while (hole != first && less(value, *(hole - 1))) {
            *hole = std::move(*(hole - 1));
            --hole;
        }
        *hole = std::move(value);
    }
}

// Moves the value into the hole at `hole` of the heap [first, first + size),
// sifting it down past larger children.
template <class It, class Less, class T>
void SiftDown(It first, std::ptrdiff_t size, std::ptrdiff_t hole, T value, Less& less)
{
    for (;;) {
        std::ptrdiff_t child = 2 * hole + 1;
        if (child >= size)
            break;
        if (child + 1 < size && less(first[child], first[child + 1]))
            ++child;
        if (!less(value, first[child]))
            break;
        first[hole] = std::move(first[child]);
        hole = child;
    }
    first[hole] = std::move(value);
}

template <class It, class Less>
void HeapSort(It first, It last, Less& less)
{
    const std::ptrdiff_t n = last - first;
    for (std::ptrdiff_t i = n / 2; i-- > 0;)
        SiftDown(first, n, i, std::move(first[i]), less);
    for (std::ptrdiff_t end = n - 1; end > 0; --end) {
        auto value = std::move(first[end]);
        first[end] = std::move(first[0]);
        SiftDown(first, end, 0, std::move(value), less);
    }
}

// Puts the median of the elements at a, b, c (three distinct positions) at `first`.
template <class It, class Less>
void MedianOfThreeToFirst(It first, It a, It b, It c, Less& less)
{
    if (less(*b, *a))
        std::iter_swap(a, b);
    if (less(*c, *b)) {
        std::iter_swap(b, c);
        if (less(*b, *a))
            std::iter_swap(a, b);
    }
    std::iter_swap(first, b);
}

// Partitions [first, last) (more than 3 elements) around the median of three,
// which ends at the returned position: what lies before it compares less,
// what lies after it does not. A Lomuto scan whose moves do not depend on
// the answers, so they cost no mispredicted branches: the element looked at
// is swapped to the end of the lower part either way, and the lower part
// grows by the answer. `ahead` is told of the elements the scan will reach a
// few steps later, so that it can fetch what the comparison will read.
template <class It, class Less, class Ahead>
It Partition(It first, It last, Less& less, Ahead& ahead)
{
    const std::ptrdiff_t n = last - first;
    MedianOfThreeToFirst(first, first + 1, first + n / 2, last - 1, less);
    // The pivot stays at `first`, outside the scan, until the final swap.
    // [first + 1, lower) compares less than it; [lower, j) does not.
    It lower = first + 1;
    for (It j = first + 1; j != last; ++j) {
        if (last - j > kAheadDistance)
            ahead(*(j + kAheadDistance));
        const bool below = less(*j, *first);
        std::iter_swap(j, lower);
        lower += below ? 1 : 0;
    }
    std::iter_swap(first, lower - 1);
    return lower - 1;
}

template <class It, class Less, class Ahead>
void IntroSortLoop(It first, It last, int budget, Less& less, Ahead& ahead)
{
    while (last - first > kIntroSortShortRange) {
        if (budget-- == 0) {
            HeapSort(first, last, less);
            return;
        }
        It pivot = Partition(first, last, less, ahead);
        // Recurse into the smaller side, loop on the larger: the stack stays
        // O(log n) deep even when the budget is generous.
        if (pivot - first < last - (pivot + 1)) {
            IntroSortLoop(first, pivot, budget, less, ahead);
            first = pivot + 1;
        } else {
            IntroSortLoop(pivot + 1, last, budget, less, ahead);
            last = pivot;
        }
    }
    InsertionSort(first, last, less);
}

// The introsort of [first, last), with its recursion budget.
template <class It, class Less, class Ahead>
void IntroSortRange(It first, It last, Less& less, Ahead& ahead)
{
    const std::ptrdiff_t n = last - first;
    if (n > 1)
        IntroSortLoop(first, last, 2 * (std::bit_width(static_cast<std::size_t>(n)) - 1), less, ahead);
}

}  // namespace nyr::views_detail

namespace nyr {

// Sorts [first, last) of a random-access range by `less` (see above).
// `ahead(element)` (optional) is called for elements the partition scans will
// compare soon: a chance to prefetch what `less` reads through them.
template <class It, class Less, class Ahead = views_detail::NoAhead>
void NyrIntroSort(It first, It last, Less less, Ahead ahead = Ahead())
{
    views_detail::IntroSortRange(first, last, less, ahead);
}

}  // namespace nyr
