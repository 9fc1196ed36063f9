#include "engine/list_file.h"

namespace kaldena {

bool ListFile::Open(const std::string& path) {
  file_.open(path, std::ios::out | std::ios::trunc | std::ios::binary);
  return file_.is_open();
}

void ListFile::Close() {
  if (file_.is_open()) file_.close();
}

void ListFile::Line(std::string_view text) {
  Text(text);
  Text("\n");
}

void ListFile::Hold() { holding_ = true; }

void ListFile::Release() {
  holding_ = false;
  Write(held_);
  held_.clear();
}

void ListFile::Drop() {
  holding_ = false;
  held_.clear();
}

void ListFile::Text(std::string_view text) {
  if (holding_) {
    held_ += text;
  } else {
    Write(text);
  }
}

void ListFile::Write(std::string_view text) {
  if (file_.is_open()) file_.write(text.data(), static_cast<std::streamsize>(text.size()));
  for (char c : text) {
    if (!lastOpen_) {
      lines_.emplace_back();
      lastOpen_ = true;
    }
    if (c == '\n') {
      lastOpen_ = false;
    } else {
      lines_.back().push_back(c);
    }
  }
}

}  // namespace kaldena
