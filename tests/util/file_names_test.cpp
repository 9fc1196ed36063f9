#include "util/file_names.h"

#include <gtest/gtest.h>

namespace kaldena {
namespace {

TEST(ForceExtension, ReplacesTheLastExtensionOfTheFilePart) {
  EXPECT_EQ(ForceExtension("C:\\data\\quartz.REC", "par"), "C:\\data\\quartz.par");
  EXPECT_EQ(ForceExtension("quartz.old.rec", "out"), "quartz.old.out");
  EXPECT_EQ(ForceExtension("quartz.", "sum"), "quartz.sum");
  EXPECT_EQ(ForceExtension("quartz.rec    ", "fou"), "quartz.fou");
}

TEST(ForceExtension, AppendsWhenTheFileHasNoPoint) {
  EXPECT_EQ(ForceExtension("quartz", "rec"), "quartz.rec");
  EXPECT_EQ(ForceExtension("run.d/quartz", "rec"), "run.d/quartz.rec");
  EXPECT_EQ(ForceExtension("./quartz", "rec"), "./quartz.rec");
  EXPECT_EQ(ForceExtension("", "rec"), ".rec");
}

TEST(DirectoryOf, KeepsEverythingUpToTheLastSeparator) {
  EXPECT_EQ(DirectoryOf("C:\\data\\quartz.rec"), "C:\\data\\");
  EXPECT_EQ(DirectoryOf("a\\b/c.rec"), "a\\b/");
  EXPECT_EQ(DirectoryOf("C:quartz.rec"), "C:");
  EXPECT_EQ(DirectoryOf("quartz.rec"), "");
}

TEST(BaseNameOf, DropsOnlyTheLastExtensionOfTheFilePart) {
  EXPECT_EQ(BaseNameOf("C:\\data.v2\\quartz.rec"), "quartz");
  // Two versions of one project keep two base names, so their outputs never meet.
  EXPECT_EQ(BaseNameOf("quartz.v1.rec"), "quartz.v1");
  EXPECT_EQ(BaseNameOf("runs/quartz.v2.rec"), "quartz.v2");
  EXPECT_EQ(BaseNameOf("quartz  "), "quartz");
  EXPECT_EQ(BaseNameOf("/home/x/"), "");
}

TEST(ReplaceDirectory, PrefixesOnlyBareNames) {
  EXPECT_EQ(ReplaceDirectory("C:\\data\\", "quartz.par"), "C:\\data\\quartz.par");
  EXPECT_EQ(ReplaceDirectory("/home/x", "quartz.par"), "/home/x/quartz.par");
  EXPECT_EQ(ReplaceDirectory("/home/x/", "other/quartz.par"), "other/quartz.par");
  EXPECT_EQ(ReplaceDirectory("/home/x/", "D:quartz.par"), "D:quartz.par");
  EXPECT_EQ(ReplaceDirectory("", "quartz.par"), "quartz.par");
}

TEST(FileNames, PartsRebuildThePath) {
  const std::string path = "C:\\runs\\quartz.rec";
  EXPECT_EQ(ReplaceDirectory(DirectoryOf(path), ForceExtension(BaseNameOf(path), "rec")), path);
}

}  // namespace
}  // namespace kaldena
