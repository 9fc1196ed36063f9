// Sorting a key array together with a companion array.
#pragma once

#include <span>

namespace kaldena {

// Sorts `keys` by Shell's method, the gap halved from the key count down to 1, and applies
// each exchange to `companion` too, which must be at least as long as `keys`. A negative
// direction sorts descending, any other ascending. Equal keys may change their order.
void SortIndexed(std::span<float> keys, std::span<int> companion, int direction);
void SortIndexed(std::span<float> keys, std::span<float> companion, int direction);

}  // namespace kaldena
