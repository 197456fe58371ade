// How the time that work takes grows with its size: for what must not hang on large files.
#pragma once
#include <algorithm>
#include <ctime>

namespace tools {

// How many times as much time `many` takes as `few`: time of this program alone, apart from Windows, where what
// else the computer does counts, too. Measured again until it is below `bound`, ten times at the most.
template <typename Few, typename Many>
double TimeGrowth(const Few& few, const Many& many, double bound) {
  const auto time = [](const auto& work) {
    const std::clock_t start = std::clock();
    work();
    return std::max(static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC, 0.001);
  };
  double growth = bound;
  for (int tries = 0; tries < 10 && growth >= bound; ++tries) {
    const double least = time(few);
    growth = time(many) / least;
  }
  return growth;
}

}  // namespace tools
