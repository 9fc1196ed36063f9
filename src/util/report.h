// Where the system tells the user things: log lines, message boxes and yes/no questions.
// The core never prints; it hands its words to a Reporter.
#pragma once

#include <deque>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace kaldena {

class Reporter {
 public:
  virtual ~Reporter() = default;
  // One line of the log window.
  virtual void LogLine(std::string_view line) = 0;
  // A modal box with a title ("Error", "Progress", ...) and its text.
  virtual void ShowMessage(std::string_view title, std::string_view text) = 0;
  // A modal question; true for "Yes".
  virtual bool AskYesNo(std::string_view title, std::string_view question) = 0;
  // A stage of a long job, for a progress display; ignored by default.
  virtual void Progress(std::string_view /*stage*/) {}
};

// Headless reporter of the command-line tool: log lines to standard output, boxes as
// "title: text" to standard error, questions answered with a fixed answer.
class ConsoleReporter : public Reporter {
 public:
  explicit ConsoleReporter(bool answer = false) : answer_(answer) {}
  void LogLine(std::string_view line) override;
  void ShowMessage(std::string_view title, std::string_view text) override;
  bool AskYesNo(std::string_view title, std::string_view question) override;

 private:
  std::mutex mutex_;
  bool answer_;
};

// A reporter that drops everything and answers No: for fuzzing and benchmarks.
class SilentReporter : public Reporter {
 public:
  void LogLine(std::string_view) override {}
  void ShowMessage(std::string_view, std::string_view) override {}
  bool AskYesNo(std::string_view, std::string_view) override { return false; }
};

// Reporter for tests: keeps everything it is told, answers questions from a queue
// (false when the queue is empty).
class RecordingReporter : public Reporter {
 public:
  struct Message {
    std::string title;
    std::string text;
    bool operator==(const Message&) const = default;
  };

  void LogLine(std::string_view line) override;
  void ShowMessage(std::string_view title, std::string_view text) override;
  bool AskYesNo(std::string_view title, std::string_view question) override;
  void Progress(std::string_view stage) override;

  void QueueAnswer(bool answer) { answers_.push_back(answer); }
  void Clear();

  std::vector<std::string> log;
  std::vector<Message> messages;
  std::vector<Message> questions;
  std::vector<std::string> stages;

 private:
  std::mutex mutex_;
  std::deque<bool> answers_;
};

}  // namespace kaldena
