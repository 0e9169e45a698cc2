// Compares two ways to do the same work on a machine whose speed wavers: both run in short slices, in turn, and what
// counts is the median of the ratios of neighbouring slices.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <vector>

namespace wncom::bench {

struct PairedResult {
    double ours;   // nanoseconds an operation, median
    double peers;  // the same
    double ratio;  // how many times as fast ours is: the median of the pairs' ratios
    double low;    // the lower quartile of the ratios
    double high;   // the upper quartile
};

// The value below which a share (0 to 1) of the values lie; they may not be empty.
inline double Quantile(std::vector<double> values, double share) {
    std::sort(values.begin(), values.end());
    return values[static_cast<std::size_t>(share * static_cast<double>(values.size() - 1) + 0.5)];
}

// The time of one slice in nanoseconds.
template <class Slice>
double TimeOf(Slice& slice) {
    const auto start = std::chrono::steady_clock::now();
    slice();
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count();
}

// From the times of slices in nanoseconds, pair by pair; each slice did this many operations.
inline PairedResult Summarise(const std::vector<double>& ours, const std::vector<double>& peers,
                              std::size_t operations) {
    std::vector<double> ratios;
    for (std::size_t i = 0; i != ours.size(); ++i) ratios.push_back(peers[i] / ours[i]);
    const double each = static_cast<double>(operations);
    return {Quantile(ours, 0.5) / each, Quantile(peers, 0.5) / each, Quantile(ratios, 0.5), Quantile(ratios, 0.25),
            Quantile(ratios, 0.75)};
}

// Runs the slices in pairs, every other pair in the other order, after one pair that warms up. A slice returns its
// time in nanoseconds.
template <class Ours, class Peers>
PairedResult MeasurePairs(std::size_t pairs, std::size_t operations, Ours ours, Peers peers) {
    std::vector<double> ourTimes;
    std::vector<double> peersTimes;
    for (std::size_t pair = 0; pair <= pairs; ++pair) {
        double our = 0;
        double peer = 0;
        if (pair % 2 == 0) our = ours();
        peer = peers();
        if (pair % 2 != 0) our = ours();
        if (pair == 0) continue;
        ourTimes.push_back(our);
        peersTimes.push_back(peer);
    }
    return Summarise(ourTimes, peersTimes, operations);
}

// The same for slices that are timed as a whole.
template <class Ours, class Peers>
PairedResult ComparePairs(std::size_t pairs, std::size_t operations, Ours ours, Peers peers) {
    return MeasurePairs(
        pairs, operations, [&] { return TimeOf(ours); }, [&] { return TimeOf(peers); });
}

}  // namespace wncom::bench
