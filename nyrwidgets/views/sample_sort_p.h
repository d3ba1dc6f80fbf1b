#pragma once

// Large sorts: rounds of sample sort ahead of the introsort.
//
// A report view sorts pointers to items spread over the heap, and every
// comparison reads two items. Quicksort's upper partitions walk the whole
// range again and again and fetch each item from memory on every pass: for a
// million items much of the sort's time goes to that memory traffic. So a
// large range is first split into many buckets in one pass:
//  1. a random sample of kOversampling elements per bucket is moved to the
//     front and sorted; every kOversampling-th of it is a splitter;
//  2. every other element finds its bucket by binary search over the
//     splitters, whose items stay in the caches: its own item is read once;
//  3. the elements move to their buckets in place, one byte each recording
//     its bucket;
//  4. each bucket, small enough for the caches now, is sorted by the
//     introsort, or split again while it is still large.
// The introsort's guarantees carry over. No element is compared with itself:
// a sample element gets its bucket from its place in the sorted sample, and
// the others are compared with splitters only. A bucket that did not shrink
// enough goes to the introsort, so any comparison answers still end in a
// permutation of the input, in O(n log n).

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <utility>
#include <vector>

#include "nyrwidgets/views/intro_sort_p.h"

namespace nyr::views_detail {

// Elements per bucket aimed at: their items (a few hundred bytes each) fit
// in a core's second-level cache.
inline constexpr std::ptrdiff_t kBucketTarget = 4096;
inline constexpr std::ptrdiff_t kMinBuckets = 16, kMaxBuckets = 256;  // a bucket number fits a byte
inline constexpr std::ptrdiff_t kOversampling = 16;

// Buckets for a range of n elements: a power of two, or 0 when the range is
// better left to the introsort.
inline std::ptrdiff_t BucketCount(std::ptrdiff_t n)
{
    if (n / kBucketTarget < kMinBuckets)
        return 0;
    const auto buckets = std::bit_floor(static_cast<std::size_t>(n / kBucketTarget));
    return std::min(kMaxBuckets, static_cast<std::ptrdiff_t>(buckets));
}

// Moves a pseudo-random sample of `size` elements to the front (a partial
// Fisher-Yates shuffle with a fixed seed: the same input sorts the same way).
template <class It>
void SampleToFront(It first, std::ptrdiff_t n, std::ptrdiff_t size)
{
    std::uint64_t x = 0x9E3779B97F4A7C15ULL ^ static_cast<std::uint64_t>(n);
    for (std::ptrdiff_t i = 0; i < size; ++i) {
        x ^= x << 13, x ^= x >> 7, x ^= x << 17;
        std::iter_swap(first + i, first + i + static_cast<std::ptrdiff_t>(x % static_cast<std::uint64_t>(n - i)));
    }
}

// Puts the elements of [first, first + n) in the buckets `bucket` names,
// in place; returns where each bucket starts (and, last, n).
template <class It>
std::vector<std::ptrdiff_t> Distribute(It first, std::ptrdiff_t n, std::uint8_t* bucket, std::ptrdiff_t buckets)
{
    std::vector<std::ptrdiff_t> start(static_cast<std::size_t>(buckets) + 1, 0);
    for (std::ptrdiff_t i = 0; i < n; ++i)
        ++start[bucket[i] + std::size_t{1}];
    for (std::size_t b = 1; b < start.size(); ++b)
        start[b] += start[b - 1];
    std::vector<std::ptrdiff_t> next(start.begin(), start.end() - 1);
    // Each swap puts the element from position i at the next free place of
    // its own bucket, so there are at most n of them.
    for (std::size_t b = 0; b < next.size(); ++b) {
        while (next[b] < start[b + 1]) {
            const std::ptrdiff_t i = next[b];
            const std::uint8_t t = bucket[i];
            if (t == b) {
                ++next[b];
                continue;
            }
            const std::ptrdiff_t j = next[t]++;
            std::iter_swap(first + i, first + j);
            std::swap(bucket[i], bucket[j]);
        }
    }
    return start;
}

template <class It, class Less, class Ahead>
void SampleSortLoop(It first, It last, std::uint8_t* bucket, Less& less, Ahead& ahead)
{
    const std::ptrdiff_t n = last - first;
    const std::ptrdiff_t buckets = BucketCount(n);
    if (buckets == 0) {
        IntroSortRange(first, last, less, ahead);
        return;
    }
    const std::ptrdiff_t sample = buckets * kOversampling;
    SampleToFront(first, n, sample);
    IntroSortRange(first, first + sample, less, ahead);
    // Splitter s is the sample's element (s + 1) * kOversampling - 1; the
    // sample's own elements lie between the splitters where they stand.
    for (std::ptrdiff_t i = 0; i < sample; ++i)
        bucket[i] = static_cast<std::uint8_t>(i / kOversampling);
    const auto splitter = [first](std::ptrdiff_t s) -> decltype(auto) {
        return *(first + ((s + 1) * kOversampling - 1));
    };
    for (std::ptrdiff_t i = sample; i < n; ++i) {
        if (n - i > kAheadDistance)
            ahead(*(first + i + kAheadDistance));
        const auto& value = *(first + i);
        // The number of splitters that compare less than the element, by a
        // search without branches on the answers (they are unpredictable).
        std::ptrdiff_t base = 0;
        for (std::ptrdiff_t half = buckets / 2; half > 0; half /= 2)
            base += less(splitter(base + half - 1), value) ? half : 0;
        bucket[i] = static_cast<std::uint8_t>(base);
    }
    const std::vector<std::ptrdiff_t> start = Distribute(first, n, bucket, buckets);
    for (std::ptrdiff_t b = 0; b < buckets; ++b) {
        const std::ptrdiff_t from = start[static_cast<std::size_t>(b)], to = start[static_cast<std::size_t>(b) + 1];
        // Another round only for a bucket that shrank well: splitters that
        // do not divide (equal or inconsistent answers) leave it to the
        // introsort and its bound.
        if (to - from <= n / 4)
            SampleSortLoop(first + from, first + to, bucket + from, less, ahead);
        else
            IntroSortRange(first + from, first + to, less, ahead);
    }
}

}  // namespace nyr::views_detail

namespace nyr {

// Sorts [first, last) of a random-access range by `less`, with the
// introsort's guarantees (intro_sort_p.h) and far fewer trips to memory on
// large ranges; `ahead` as there. Needs one byte per element while it runs.
template <class It, class Less, class Ahead = views_detail::NoAhead>
void NyrSampleSort(It first, It last, Less less, Ahead ahead = Ahead())
{
    const std::ptrdiff_t n = last - first;
    if (views_detail::BucketCount(n) == 0) {
        views_detail::IntroSortRange(first, last, less, ahead);
        return;
    }
    std::vector<std::uint8_t> bucket(static_cast<std::size_t>(n));
    views_detail::SampleSortLoop(first, last, bucket.data(), less, ahead);
}

}  // namespace nyr
