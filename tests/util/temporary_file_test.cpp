// Files replaced whole: names of their own across threads, the rename over a target, what a
// failure leaves, and the sweep that takes only leftovers nobody holds.
#include "util/temporary_file.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <thread>
#include <vector>

#include "support/test_files.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;
using testing::ReadBytes;
using testing::ScratchDir;

std::string Directory(const ScratchDir& dir) { return dir.Path().string() + "/"; }

TEST(TemporaryFile, EveryFileHasANameOfItsOwnAndGoesWithItsOwner) {
  ScratchDir dir;
  const std::string prefix = Directory(dir) + "%quartz." + std::to_string(::getpid()) + "-";
  std::vector<std::vector<TemporaryFile>> made(4);
  std::vector<std::thread> threads;
  for (auto& files : made) {
    threads.emplace_back([&] {
      for (int i = 0; i < 25; ++i)
        files.push_back(TemporaryFile::Create(Directory(dir), "%quartz"));
    });
  }
  for (std::thread& t : threads) t.join();
  std::set<std::string> names;
  for (const auto& files : made) {
    for (const TemporaryFile& file : files) {
      ASSERT_TRUE(file.Exists());
      EXPECT_EQ(file.Name().substr(0, prefix.size()), prefix);
      EXPECT_TRUE(file.Name().ends_with(".tmp"));
      EXPECT_TRUE(fs::exists(file.Name()));
      names.insert(file.Name());
    }
  }
  EXPECT_EQ(names.size(), 100u);
  made.clear();
  EXPECT_TRUE(fs::is_empty(dir.Path()));

  // A move hands the file on; the moved-from object owns nothing.
  TemporaryFile first = TemporaryFile::Create(Directory(dir), "x");
  const std::string name = first.Name();
  TemporaryFile second = std::move(first);
  EXPECT_FALSE(first.Exists());
  EXPECT_EQ(second.Name(), name);
  second = TemporaryFile();
  EXPECT_FALSE(fs::exists(name));
}

TEST(TemporaryFile, RenameOverReplacesTheTargetWithItsPermissions) {
  ScratchDir dir;
  const fs::path target = dir.Write("p.par", "old\n");
  fs::permissions(target, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
  {
    TemporaryFile file = TemporaryFile::Create(Directory(dir), "p");
    std::ofstream(file.Name()) << "new\n";
    ASSERT_TRUE(file.RenameOver(target.string()));
    EXPECT_FALSE(file.Exists());
  }
  EXPECT_EQ(ReadBytes(target), "new\n");
  EXPECT_EQ(fs::status(target).permissions(),
            fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
  EXPECT_EQ(std::distance(fs::directory_iterator(dir.Path()), fs::directory_iterator()), 1);

  // A target that cannot be replaced stays as it was; the file goes with its owner.
  fs::create_directory(dir.Path() / "blocked.par");
  std::string name;
  {
    TemporaryFile file = TemporaryFile::Create(Directory(dir), "p");
    name = file.Name();
    EXPECT_FALSE(file.RenameOver((dir.Path() / "blocked.par").string()));
    EXPECT_TRUE(fs::exists(name));
  }
  EXPECT_FALSE(fs::exists(name));
  EXPECT_TRUE(fs::is_directory(dir.Path() / "blocked.par"));

  // No file can be made in a directory that does not exist.
  EXPECT_FALSE(TemporaryFile::Create(Directory(dir) + "absent/", "p").Exists());
}

TEST(TemporaryFile, OnlyLeftoversThatNobodyHoldsAreSwept) {
  ScratchDir dir;
  // What a killed run leaves, beside files that only look alike.
  const std::vector<std::string> others = {"%q.tmp",      "%q.1-x.tmp",  "%q.-1.tmp", "%q.12-.tmp",
                                           "%qq.1-1.tmp", "%q.1-1.tmpx", "%q.par",    "q.1-1.tmp"};
  for (const std::string& name : others) dir.Write(name, "");
  dir.Write("%q.99999-1.tmp", "left by a killed run");
  dir.Write("%q.4-17.tmp", "");
  const TemporaryFile live = TemporaryFile::Create(Directory(dir), "%q");

  RemoveStaleTemporaries(Directory(dir), "%q");
  EXPECT_FALSE(fs::exists(dir.Path() / "%q.99999-1.tmp"));
  EXPECT_FALSE(fs::exists(dir.Path() / "%q.4-17.tmp"));
  EXPECT_TRUE(fs::exists(live.Name()));
  for (const std::string& name : others) EXPECT_TRUE(fs::exists(dir.Path() / name)) << name;

  // A new file sweeps its stem's leftovers first.
  dir.Write("%q.99999-2.tmp", "");
  const TemporaryFile next = TemporaryFile::Create(Directory(dir), "%q");
  EXPECT_FALSE(fs::exists(dir.Path() / "%q.99999-2.tmp"));
  EXPECT_TRUE(fs::exists(live.Name()));
  EXPECT_TRUE(fs::exists(next.Name()));
}

TEST(TemporaryFile, WriteFileWholeReplacesOrLeavesTheOldFile) {
  ScratchDir dir;
  const fs::path target = dir.Write("a.rec", "old\n");
  EXPECT_TRUE(WriteFileWhole(target.string(), [](std::ostream& out) { out << "new\n"; }));
  EXPECT_EQ(ReadBytes(target), "new\n");

  // A write that fails half way (a full disk) keeps the old content.
  EXPECT_FALSE(WriteFileWhole(target.string(), [](std::ostream& out) {
    out << "half";
    out.setstate(std::ios::badbit);
  }));
  EXPECT_EQ(ReadBytes(target), "new\n");
  EXPECT_EQ(std::distance(fs::directory_iterator(dir.Path()), fs::directory_iterator()), 1);

  // A name without a directory lies in the current one.
  const fs::path old = fs::current_path();
  fs::current_path(dir.Path());
  EXPECT_TRUE(WriteFileWhole("b.rec", [](std::ostream& out) { out << "b\n"; }));
  fs::current_path(old);
  EXPECT_EQ(ReadBytes(dir.Path() / "b.rec"), "b\n");
}

}  // namespace
}  // namespace kaldena
