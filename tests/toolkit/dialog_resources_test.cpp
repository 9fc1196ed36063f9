// The dialog resource reader: the built-in dialogs, and malformed texts named by line.
#include "toolkit/dialog_resources.h"

#include <gtest/gtest.h>

#include <set>

namespace kaldena {
namespace {

// The message of reading `text` as "test.dlg", empty when it reads.
std::string ErrorOf(std::string_view text) {
  std::vector<DialogResource> dialogs;
  std::string error;
  return ReadDialogResources(text, "test.dlg", dialogs, error) ? std::string() : error;
}

constexpr std::string_view kHead = "DIALOG 200 300 100 \"Test\"\n";

TEST(DialogResources, EveryBuiltInTextReadsAndEachDialogIdIsUnique) {
  EXPECT_EQ(EmbeddedResourceError(), "");
  std::set<std::string_view> sources;
  for (const ResourceText& text : EmbeddedResourceTexts()) {
    std::vector<DialogResource> dialogs;
    std::string error;
    EXPECT_TRUE(ReadDialogResources(text.text, text.name, dialogs, error)) << error;
    EXPECT_FALSE(dialogs.empty()) << text.name;
    sources.insert(text.name);
  }
  std::set<int> ids;
  for (const DialogResource& dialog : DialogResources()) {
    EXPECT_TRUE(ids.insert(dialog.id).second) << dialog.id;
    EXPECT_TRUE(sources.contains(dialog.source));
    EXPECT_EQ(FindDialogResource(dialog.id), &dialog);
  }
  EXPECT_EQ(FindDialogResource(999), nullptr);
}

TEST(DialogResources, AFieldCarriesItsPlaceAndCompanionData) {
  const DialogResource* dialog = FindDialogResource(139);
  ASSERT_NE(dialog, nullptr);
  EXPECT_EQ(dialog->title, "Crystallinity calculation");
  const DialogField* minimum = dialog->Field(1440);
  ASSERT_NE(minimum, nullptr);
  EXPECT_EQ(minimum->kind, FieldKind::kRealEdit);
  EXPECT_EQ(minimum->format, "(f8.2)");
  ASSERT_TRUE(minimum->range);
  EXPECT_EQ(minimum->range->high, 180.0);
  EXPECT_GT(minimum->width, 0);
  const DialogField* calculate = dialog->Field(1443);
  ASSERT_NE(calculate, nullptr);
  EXPECT_EQ(calculate->caption, "Calculate");
  EXPECT_TRUE(calculate->IsButton());
  EXPECT_EQ(dialog->Field(-1), nullptr);  // static fields are not addressable
  EXPECT_EQ(dialog->Field(1444), nullptr);
}

// The dialogs whose titles and ids are described, field by field; the shell's code and the
// screen both rely on them.
TEST(DialogResources, DescribedDialogsHaveTheirTitlesAndFieldIds) {
  struct Expected {
    int dialog;
    std::string_view title;
    std::vector<std::pair<int, FieldKind>> fields;
  };
  const FieldKind real = FieldKind::kRealEdit, text = FieldKind::kText;
  const FieldKind button = FieldKind::kPushButton, radio = FieldKind::kRadioButton;
  std::vector<Expected> expected = {
      {102, "About KALDEN", {{1001, FieldKind::kLabel}, {1, button}}},
      {128,
       "New project from CIF",
       {{1382, text}, {1383, text}, {1384, button}, {1385, button}, {1, button}, {2, button}}},
      {133,
       "Preferences",
       {{1426, text},
        {1427, text},
        {1428, text},
        {1429, button},
        {1430, button},
        {1431, button},
        {1432, real},
        {1433, real},
        {1434, real}}},
      {134, "Distance and angle options", {{1464, FieldKind::kCheckBox}}},
      {136, "Fourier calculation options", {{1480, radio}, {1484, radio}}},
      {137, "Fourier plot", {{1500, radio}, {1502, radio}, {1503, button}, {2, button}}},
      {139, "Crystallinity calculation", {{1440, real}, {1441, real}, {1442, real}}},
      {140, "Add Fourier peaks", {{1450, FieldKind::kGrid}, {1452, button}}},
  };
  Expected plotOptions{111, "Plot options", {{1, button}, {2, button}}};
  for (int i = 0; i < 15; ++i) {
    plotOptions.fields.emplace_back(1141 + i, FieldKind::kCheckBox);
    plotOptions.fields.emplace_back(1386 + i, FieldKind::kColourButton);
  }
  expected.push_back(plotOptions);
  for (const Expected& e : expected) {
    const DialogResource* dialog = FindDialogResource(e.dialog);
    ASSERT_NE(dialog, nullptr) << e.dialog;
    EXPECT_EQ(dialog->title, e.title);
    for (const auto& [id, kind] : e.fields) {
      const DialogField* field = dialog->Field(id);
      ASSERT_NE(field, nullptr) << e.dialog << " " << id;
      EXPECT_EQ(field->kind, kind) << e.dialog << " " << id;
    }
  }
  // The map types' buttons are one group, in the order of the types.
  const DialogResource& fourier = *FindDialogResource(136);
  EXPECT_EQ(fourier.Field(1484)->radioGroup, 1480);
  EXPECT_EQ(fourier.Field(1481)->caption, "Patterson (Fcalc)");
  EXPECT_EQ(FindDialogResource(134)->Field(1462)->format, "(f10.5)");
}

TEST(DialogResources, EverySectionReadsIntoItsField) {
  std::vector<DialogResource> dialogs;
  std::string error;
  ASSERT_TRUE(ReadDialogResources(R"(# two dialogs: a grid's columns come from the second
DIALOG 200 300 100 "Test"
CHECKBOX    10  0  0 10 10 "On"
RADIOBUTTON 11  0 20 10 10 "A"
RADIOBUTTON 12  0 40 10 10 "B"
RADIOBUTTON 13  0 60 10 10 "C"
MENU        14  0 80 10 10 ""
GRID        15 20  0 99 99 ""
TEXT        16 20  0 10 10 "Name"
[Checks]
10 1
12 1
[Menus]
14 2 2
first entry
second entry
[Grids]
15 2 3 201
40
row 1
row 2
row 3
[Lengths]
16 8
DIALOG 201 100 100 "Columns"
TEXT     1  0 0 40 10 "Label"
REALEDIT 2  0 0 50 10 "x"
[Formats]
2 (f10.4)
)",
                                  "test.dlg", dialogs, error))
      << error;
  ASSERT_EQ(dialogs.size(), 2u);
  const DialogResource& d = dialogs[0];
  EXPECT_EQ(d.Field(10)->checked, 1);
  EXPECT_EQ(d.Field(11)->radioGroup, 11);
  EXPECT_EQ(d.Field(13)->radioGroup, 11);
  EXPECT_EQ(d.Field(10)->radioGroup, 0);
  EXPECT_EQ(d.Field(14)->menu, (std::vector<std::string>{"first entry", "second entry"}));
  EXPECT_EQ(d.Field(14)->menuSelected, 2);
  const GridLayout& grid = *d.Field(15)->grid;
  EXPECT_EQ(grid.columns, 2);
  EXPECT_EQ(grid.columnDialog, 201);
  EXPECT_EQ(grid.headerWidth, 40);
  EXPECT_EQ(grid.rowLabels.back(), "row 3");
  EXPECT_EQ(d.Field(16)->length, 8);
  EXPECT_EQ(dialogs[1].Field(2)->format, "(f10.4)");
}

TEST(DialogResources, AGridMayLeaveItsRowLabelsToTheProgram) {
  std::vector<DialogResource> dialogs;
  std::string error;
  ASSERT_TRUE(ReadDialogResources(std::string(kHead) +
                                      "GRID 15 0 0 99 99 \"\"\n"
                                      "MENU 16 0 0 9 9 \"\"\n"
                                      "[Grids]\n15 4 100 201\n30\n[Menus]\n16 1 0\nonly\n",
                                  "test.dlg", dialogs, error))
      << error;
  EXPECT_TRUE(dialogs[0].Field(15)->grid->rowLabels.empty());
  EXPECT_EQ(dialogs[0].Field(16)->menu.size(), 1u);
}

TEST(DialogResources, MalformedTextsNameTheResourceAndLine) {
  const std::string head(kHead);
  EXPECT_EQ(ErrorOf("TEXT 1 0 0 10 10 \"\"\n"), "test.dlg:1: a field before the first DIALOG line");
  EXPECT_EQ(ErrorOf("DIALOG 200 300 \"No height\"\n"),
            "test.dlg:1: expected DIALOG id width height \"title\"");
  EXPECT_EQ(ErrorOf(head + "\n# comment\nSLIDER 1 0 0 10 10 \"\"\n"),
            "test.dlg:4: unknown field class SLIDER");
  EXPECT_EQ(ErrorOf(head + "TEXT 1 0 0 10 \"\"\n"),
            "test.dlg:2: expected CLASS id x y width height \"caption\"");
  EXPECT_EQ(ErrorOf(head + "TEXT 1 0 0 10 x10 \"\"\n"),
            "test.dlg:2: expected CLASS id x y width height \"caption\"");
  EXPECT_EQ(ErrorOf(head + "TEXT 1 0 0 10 10 \"\"\nTEXT 1 0 0 10 10 \"\"\n"),
            "test.dlg:3: field 1 twice");
  EXPECT_EQ(ErrorOf(head + "TEXT -1 0 0 10 10 \"\"\n"),
            "test.dlg:2: only labels and group boxes may have the id -1");
  EXPECT_EQ(ErrorOf(head + head), "test.dlg:2: dialog 200 twice");
  EXPECT_EQ(ErrorOf(head + "\t\"Caption\"\n"), "test.dlg:2: a line without a class or field id");
  EXPECT_EQ(ErrorOf(head + "[Sizes]\n"), "test.dlg:2: unknown section [Sizes]");
  EXPECT_EQ(ErrorOf("[Checks]\n"), "test.dlg:1: section [Checks] before the first DIALOG line");

  const std::string fields = head +
                             "TEXT 1 0 0 10 10 \"\"\nREALEDIT 2 0 0 10 10 \"\"\n"
                             "CHECKBOX 3 0 0 10 10 \"\"\nMENU 4 0 0 10 10 \"\"\n"
                             "GRID 5 0 0 10 10 \"\"\n";  // lines 2 to 6
  EXPECT_EQ(ErrorOf(fields), "test.dlg:6: grid 5 has no line in [Grids]");
  EXPECT_EQ(ErrorOf(fields + "\n" + head), "test.dlg:8: grid 5 has no line in [Grids]");
  EXPECT_EQ(ErrorOf(fields + "[Checks]\n9 1\n"), "test.dlg:8: dialog 200 has no field 9");
  EXPECT_EQ(ErrorOf(fields + "[Checks]\n1 1\n"),
            "test.dlg:8: field 1 is not a check box or radio button");
  EXPECT_EQ(ErrorOf(fields + "[Checks]\n3 2\n"), "test.dlg:8: state must be 0 or 1");
  EXPECT_EQ(ErrorOf(fields + "[Ranges]\n2 5 1\n"),
            "test.dlg:8: expected two numbers, low not above high");
  EXPECT_EQ(ErrorOf(fields + "[Ranges]\n3 0 1\n"),
            "test.dlg:8: field 3 is not an integer or real field");
  EXPECT_EQ(ErrorOf(fields + "[Lengths]\n2 8\n"), "test.dlg:8: field 2 is not a text field");
  EXPECT_EQ(ErrorOf(fields + "[Lengths]\n1 0\n"),
            "test.dlg:8: length must be a whole number above 0");
  EXPECT_EQ(ErrorOf(fields + "[Formats]\n2 (f8.2\n"),
            "test.dlg:8: format (f8.2 does not write a real");
  EXPECT_EQ(ErrorOf(fields + "[Formats]\n2\n"), "test.dlg:8: expected id format");
  EXPECT_EQ(ErrorOf(fields + "[Menus]\n4 2 3\none\ntwo\n"),
            "test.dlg:8: expected a count and a selected entry from 0 to the count");
  EXPECT_EQ(ErrorOf(fields + "[Menus]\n4 2 1\none\n"), "test.dlg:9: menu 4 lacks entries");
  EXPECT_EQ(ErrorOf(fields + "[Menus]\n4 2 1\none\n[Checks]\n"),
            "test.dlg:10: menu 4 lacks entries");
  EXPECT_EQ(ErrorOf(fields + "[Grids]\n5 0 3 201\n"),
            "test.dlg:8: expected columns above 0, rows not below 0 and a column dialog");
  EXPECT_EQ(ErrorOf(fields + "[Grids]\n5 2 3 201\nwide\n"),
            "test.dlg:9: row-header width of grid 5 is not a whole number");
  EXPECT_EQ(ErrorOf(fields + "[Grids]\n5 2 3 201\n"),
            "test.dlg:8: grid 5 lacks its row-header width");
  EXPECT_EQ(ErrorOf(fields + "[Grids]\n5 2 3 201\n30\nrow 1\n[Checks]\n"),
            "test.dlg:11: grid 5 has 1 row labels for 3 rows");
}

}  // namespace
}  // namespace kaldena
