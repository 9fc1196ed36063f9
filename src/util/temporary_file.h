// Files that replace others whole. The new content is written beside its target under a name
// of its own and renamed over it, so that a reader, or a kill at any moment, finds the old file
// or the new one and never a part. The owner holds a lock on its temporary file while it lives,
// which tells the leftover of a killed process from a file in use.
#pragma once

#include <fstream>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

namespace kaldena {

class TemporaryFile {
 public:
  // No file.
  TemporaryFile() = default;
  // Creates the empty file "<directory><stem>.<process id>-<count>.tmp", unique to this object
  // among all threads and processes, and locks it. Leftovers of the same stem that nobody holds
  // are removed first. No file (`Exists` false) when it cannot be created.
  static TemporaryFile Create(std::string_view directory, std::string_view stem);

  // Removes the file unless it has replaced its target.
  ~TemporaryFile();
  TemporaryFile(TemporaryFile&& other) noexcept;
  TemporaryFile& operator=(TemporaryFile&& other) noexcept;
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  bool Exists() const { return lock_ >= 0; }
  const std::string& Name() const { return name_; }

  // Puts the content on the disk and renames the file over `target`, which must lie on the same
  // file system (beside it); a target that exists passes its permissions on. False when a step
  // fails: the target is then as it was, and the file stays until this object ends.
  bool RenameOver(std::string_view target);

 private:
  TemporaryFile(int lock, std::string name) : lock_(lock), name_(std::move(name)) {}
  void Release();

  int lock_ = -1;  // an open descriptor of the file, holding its lock
  std::string name_;
};

// An output stream whose file takes the place of its target only when published: it is written
// to a temporary file beside the target, so that until `Publish`, and when the writer never
// gets there (a kill, a failed run), the target stays as it was.
class PendingFile : public std::ofstream {
 public:
  PendingFile() = default;
  explicit PendingFile(std::string_view target) { Open(target); }
  PendingFile(PendingFile&& other) noexcept;
  PendingFile& operator=(PendingFile&& other) noexcept;

  // Starts the temporary file for `target`; false (and `is_open` false) when it cannot be made.
  bool Open(std::string_view target);
  // Closes the stream and renames its file over the target. False when the writing or the
  // rename failed: the target is then as it was.
  bool Publish();
  const std::string& Target() const { return target_; }
  // The file being written, for a reader before it is published.
  const std::string& Name() const { return temporary_.Name(); }

 private:
  std::string target_;
  TemporaryFile temporary_;
};

// Writes `target` whole through `write` into a temporary file beside it, which then replaces it
// by rename. False when the content cannot be written (`write` may set the stream's failbit)
// or the rename fails; `target` then stays as it was.
bool WriteFileWhole(std::string_view target, const std::function<void(std::ostream&)>& write);

// Copies `from` over `target` the same way. False when `from` does not read whole or the copy
// cannot replace `target`, which then stays as it was.
bool CopyFileWhole(std::string_view from, std::string_view target);

// Removes the files "<stem>.<digits>-<digits>.tmp" of `directory` (empty: the current one)
// whose lock nobody holds: what processes that were killed left behind.
void RemoveStaleTemporaries(std::string_view directory, std::string_view stem);

}  // namespace kaldena
