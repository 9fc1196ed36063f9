#include <chrono>
#include <ctime>

#include "toolkit/toolkit.h"

namespace kaldena {

DateTime SystemDateTime() {
  const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  std::tm local{};
  localtime_r(&now, &local);
  return DateTime{local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
                  local.tm_hour,        local.tm_min,     local.tm_sec};
}

}  // namespace kaldena
