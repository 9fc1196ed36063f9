// The commands of kalden beside the built-in ones: each takes the arguments behind its name
// and returns the exit code (0 success, 1 failure) or kBadArguments.
#pragma once

#include <cmath>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

namespace kaldena {

// Returned by a command whose arguments do not fit its usage: kalden prints the usage line of
// its command table and exits with 1, so the line is written in one place.
inline constexpr int kBadArguments = -1;

// A number argument: the whole text one finite number, or nothing.
inline std::optional<float> NumberArgument(const std::string& text) {
  char* end = nullptr;
  const float value = std::strtof(text.c_str(), &end);
  if (text.empty() || *end != '\0' || !std::isfinite(value)) return std::nullopt;
  return value;
}

int ElementCommand(const std::vector<std::string>& args);
int SpaceGroupCommand(const std::vector<std::string>& args);
int RawDataCommand(const std::vector<std::string>& args);
int RunCommand(const std::vector<std::string>& args);
int UpdateCommand(const std::vector<std::string>& args);
int TableCommand(const std::vector<std::string>& args);
int CrystallinityCommand(const std::vector<std::string>& args);
int KeysCommand(const std::vector<std::string>& args);
// Exit code 0 clean, 2 with warnings, 1 with errors.
int CheckCommand(const std::vector<std::string>& args);

}  // namespace kaldena
