// The list file of a run: the engine's running account, line by line. Lines are kept in
// memory as well, so that tests and the caller can read what was written.
#pragma once

#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace kaldena {

class ListFile {
 public:
  // Also writes to a file from now on; false when it cannot be created.
  bool Open(const std::string& path);
  void Close();
  bool IsOpen() const { return file_.is_open(); }

  // One line (without its line end).
  void Line(std::string_view text);
  // Text of one or more lines as the column writer makes it ("...\n...\n"); a last line
  // without its end is kept open and continued by the next write.
  void Text(std::string_view text);

  const std::vector<std::string>& Lines() const { return lines_; }

  // Text written from Hold on waits until Release writes it or Drop discards it: the listing
  // of a least-squares step that may still be rejected.
  void Hold();
  void Release();
  void Drop();

 private:
  void Write(std::string_view text);

  std::ofstream file_;
  std::vector<std::string> lines_;
  bool lastOpen_ = false;
  bool holding_ = false;
  std::string held_;
};

}  // namespace kaldena
