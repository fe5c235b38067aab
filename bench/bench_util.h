#pragma once
// Timing helpers shared by the benchmark programs.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace bench {

inline double NowMicroseconds() {
  static const double frequency = [] {
    LARGE_INTEGER f;
    ::QueryPerformanceFrequency(&f);
    return static_cast<double>(f.QuadPart);
  }();
  LARGE_INTEGER t;
  ::QueryPerformanceCounter(&t);
  return static_cast<double>(t.QuadPart) * 1e6 / frequency;
}

inline double Median(std::vector<double> samples) {
  if (samples.empty()) return 0.0;
  std::sort(samples.begin(), samples.end());
  return samples[samples.size() / 2];
}

// Alternates the two measured bodies so that drift of the machine hits both alike.
template <class Ours, class Floor>
void Interleave(int rounds, Ours&& ours, Floor&& floor, std::vector<double>& oursSamples,
                std::vector<double>& floorSamples) {
  for (int i = 0; i < rounds; ++i) {
    double t0 = NowMicroseconds();
    floor();
    double t1 = NowMicroseconds();
    ours();
    double t2 = NowMicroseconds();
    floorSamples.push_back(t1 - t0);
    oursSamples.push_back(t2 - t1);
  }
}

}  // namespace bench
