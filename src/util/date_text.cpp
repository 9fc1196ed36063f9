#include "util/date_text.h"

#include <ctime>

namespace kaldena {

std::string TodayText() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char text[11];
  std::strftime(text, sizeof text, "%Y-%m-%d", &local);
  return text;
}

}  // namespace kaldena
