#include "util/sort.h"

#include <cassert>
#include <utility>

namespace kaldena {

namespace {

template <typename Companion>
void ShellSort(std::span<float> keys, std::span<Companion> companion, int direction) {
  assert(companion.size() >= keys.size());
  const float sign = direction < 0 ? -1.0f : 1.0f;
  const std::size_t count = keys.size();
  for (std::size_t gap = count / 2; gap > 0; gap /= 2) {
    // Insertion sort of each chain of elements `gap` apart.
    for (std::size_t i = gap; i < count; ++i) {
      for (std::size_t j = i; j >= gap && sign * keys[j - gap] > sign * keys[j]; j -= gap) {
        std::swap(keys[j - gap], keys[j]);
        std::swap(companion[j - gap], companion[j]);
      }
    }
  }
}

}  // namespace

void SortIndexed(std::span<float> keys, std::span<int> companion, int direction) {
  ShellSort(keys, companion, direction);
}

void SortIndexed(std::span<float> keys, std::span<float> companion, int direction) {
  ShellSort(keys, companion, direction);
}

}  // namespace kaldena
