#include "util/temporary_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <utility>

#include "util/file_names.h"

namespace kaldena {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kSuffix = ".tmp";
constexpr int kCreateAttempts = 100;

// Temporary files made by this process so far: with the process id, a name no thread or
// process shares.
std::atomic<unsigned long> createdFiles{0};

std::string UniqueName(std::string_view directory, std::string_view stem) {
  const std::string file = std::string(stem) + "." + std::to_string(::getpid()) + "-" +
                           std::to_string(++createdFiles) + std::string(kSuffix);
  return ReplaceDirectory(directory, file);
}

bool IsDigits(std::string_view text) {
  return !text.empty() &&
         std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// "<stem>.<digits>-<digits>.tmp"
bool IsTemporaryOf(std::string_view file, std::string_view stem) {
  if (file.size() < stem.size() + kSuffix.size() + 4 || !file.starts_with(stem) ||
      !file.ends_with(kSuffix) || file[stem.size()] != '.') {
    return false;
  }
  const std::string_view numbers =
      file.substr(stem.size() + 1, file.size() - stem.size() - 1 - kSuffix.size());
  const std::size_t dash = numbers.find('-');
  return dash != std::string_view::npos && IsDigits(numbers.substr(0, dash)) &&
         IsDigits(numbers.substr(dash + 1));
}

// True while `name` is the file that `descriptor` has open: a sweep may remove a new file
// between its creation and its lock.
bool StillNamed(int descriptor, const std::string& name) {
  struct stat open {};
  struct stat named {};
  return ::fstat(descriptor, &open) == 0 && ::stat(name.c_str(), &named) == 0 &&
         open.st_dev == named.st_dev && open.st_ino == named.st_ino;
}

// Opens `name` and takes its lock without waiting. -1 when it does not open (errno tells why)
// or when another holds the lock or has removed the file (errno EAGAIN).
int OpenLocked(const std::string& name, int flags) {
  const int descriptor = ::open(name.c_str(), flags | O_CLOEXEC, 0666);
  if (descriptor < 0) return -1;
  if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0 && StillNamed(descriptor, name)) {
    return descriptor;
  }
  ::close(descriptor);
  errno = EAGAIN;
  return -1;
}

// The rename itself is on the disk only once its directory is.
void SyncDirectory(const std::string& directory) {
  const int descriptor =
      ::open(directory.empty() ? "." : directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  ::fsync(descriptor);
  ::close(descriptor);
}

}  // namespace

TemporaryFile TemporaryFile::Create(std::string_view directory, std::string_view stem) {
  RemoveStaleTemporaries(directory, stem);
  for (int attempt = 0; attempt < kCreateAttempts; ++attempt) {
    std::string name = UniqueName(directory, stem);
    const int lock = OpenLocked(name, O_RDWR | O_CREAT | O_EXCL);
    if (lock >= 0) return TemporaryFile(lock, std::move(name));
    // A leftover of an earlier process of the same id, or a sweep that came first: next name.
    if (errno != EEXIST && errno != EAGAIN) break;
  }
  return {};
}

TemporaryFile::~TemporaryFile() { Release(); }

TemporaryFile::TemporaryFile(TemporaryFile&& other) noexcept
    : lock_(std::exchange(other.lock_, -1)), name_(std::exchange(other.name_, {})) {}

TemporaryFile& TemporaryFile::operator=(TemporaryFile&& other) noexcept {
  if (this != &other) {
    Release();
    lock_ = std::exchange(other.lock_, -1);
    name_ = std::exchange(other.name_, {});
  }
  return *this;
}

void TemporaryFile::Release() {
  if (lock_ < 0) return;
  ::unlink(name_.c_str());  // under the lock still, so no sweep takes it meanwhile
  ::close(lock_);
  lock_ = -1;
  name_.clear();
}

bool TemporaryFile::RenameOver(std::string_view target) {
  if (lock_ < 0) return false;
  const std::string to(target);
  struct stat old {};
  if (::stat(to.c_str(), &old) == 0 && S_ISREG(old.st_mode)) ::fchmod(lock_, old.st_mode & 07777);
  if (::fsync(lock_) != 0 || ::rename(name_.c_str(), to.c_str()) != 0) return false;
  SyncDirectory(DirectoryOf(to));
  ::close(lock_);
  lock_ = -1;
  name_.clear();
  return true;
}

PendingFile::PendingFile(PendingFile&& other) noexcept
    : std::ofstream(std::move(other)),
      target_(std::move(other.target_)),
      temporary_(std::move(other.temporary_)) {}

PendingFile& PendingFile::operator=(PendingFile&& other) noexcept {
  std::ofstream::operator=(std::move(other));
  target_ = std::move(other.target_);
  temporary_ = std::move(other.temporary_);
  return *this;
}

bool PendingFile::Open(std::string_view target) {
  target_ = std::string(target);
  const std::string directory = DirectoryOf(target_);
  temporary_ = TemporaryFile::Create(directory, std::string_view(target_).substr(directory.size()));
  if (temporary_.Exists()) open(temporary_.Name(), std::ios::binary | std::ios::trunc);
  return is_open();
}

bool PendingFile::Publish() {
  if (!is_open()) return false;
  close();
  return !fail() && temporary_.RenameOver(target_);
}

bool WriteFileWhole(std::string_view target, const std::function<void(std::ostream&)>& write) {
  PendingFile out(target);
  if (!out.is_open()) return false;
  write(out);
  return out.Publish();
}

bool CopyFileWhole(std::string_view from, std::string_view target) {
  std::ifstream in{std::string(from), std::ios::binary};
  if (!in.is_open()) return false;
  return WriteFileWhole(target, [&in](std::ostream& out) {
    char buffer[1 << 16];
    while (in.read(buffer, sizeof buffer) || in.gcount() > 0) out.write(buffer, in.gcount());
    // A directory or a read error is no end of the file: nothing may replace the target then.
    if (in.bad() || !in.eof()) out.setstate(std::ios::failbit);
  });
}

void RemoveStaleTemporaries(std::string_view directory, std::string_view stem) {
  std::error_code error;
  const fs::path folder = directory.empty() ? fs::path(".") : fs::path(directory);
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    if (!IsTemporaryOf(entry->path().filename().string(), stem)) continue;
    const std::string name = entry->path().string();
    const int lock = OpenLocked(name, O_RDONLY);
    if (lock < 0) continue;  // its owner lives
    ::unlink(name.c_str());
    ::close(lock);
  }
}

}  // namespace kaldena
