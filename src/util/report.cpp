#include "util/report.h"

#include <cstdio>

namespace kaldena {

void ConsoleReporter::LogLine(std::string_view line) {
  std::lock_guard lock(mutex_);
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fputc('\n', stdout);
  std::fflush(stdout);
}

void ConsoleReporter::ShowMessage(std::string_view title, std::string_view text) {
  std::lock_guard lock(mutex_);
  std::fprintf(stderr, "%.*s: %.*s\n", static_cast<int>(title.size()), title.data(),
               static_cast<int>(text.size()), text.data());
}

bool ConsoleReporter::AskYesNo(std::string_view title, std::string_view question) {
  std::lock_guard lock(mutex_);
  std::fprintf(stderr, "%.*s: %.*s [%s]\n", static_cast<int>(title.size()), title.data(),
               static_cast<int>(question.size()), question.data(), answer_ ? "yes" : "no");
  return answer_;
}

void RecordingReporter::LogLine(std::string_view line) {
  std::lock_guard lock(mutex_);
  log.emplace_back(line);
}

void RecordingReporter::ShowMessage(std::string_view title, std::string_view text) {
  std::lock_guard lock(mutex_);
  messages.push_back({std::string(title), std::string(text)});
}

bool RecordingReporter::AskYesNo(std::string_view title, std::string_view question) {
  std::lock_guard lock(mutex_);
  questions.push_back({std::string(title), std::string(question)});
  if (answers_.empty()) return false;
  bool answer = answers_.front();
  answers_.pop_front();
  return answer;
}

void RecordingReporter::Progress(std::string_view stage) {
  std::lock_guard lock(mutex_);
  stages.emplace_back(stage);
}

void RecordingReporter::Clear() {
  std::lock_guard lock(mutex_);
  log.clear();
  messages.clear();
  questions.clear();
  stages.clear();
  answers_.clear();
}

}  // namespace kaldena
