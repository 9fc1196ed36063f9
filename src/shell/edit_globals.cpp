// "Edit global parameters": zero point and sample shifts, asymmetry values, the refinable
// wavelength and the background coefficients, each with its codeword.
#include <array>

#include "shell/edit_command.h"
#include "shell/edit_dialogs.h"
#include "store/record_catalogue.h"

namespace kaldena {
namespace {

struct Globals {
  std::array<float, 3> zero{}, zeroCodes{};                // ZETT, CZET
  std::array<float, 3> axial{}, axialCodes{};              // AXID, CAXI
  std::array<float, 3> lambdas{1.54051f, 1.54433f, 0.5f};  // ELAM, kept as it is
  bool haveWave = false;
  float wave = 0.0f, waveSigma = 0.0f, waveCode = 0.0f;                       // WAVE, CWAV
  std::array<float, kGlobalsBackgroundRows> background{}, backgroundCodes{};  // BKGR, CBKG
};

// The values of a key's lines one after another, five a line (BKGR, CBKG).
void ReadRows(RecordStore& store, std::string_view key, std::span<float> values) {
  std::size_t next = 0;
  for (const std::string& line : FindRecords(store, key, int(values.size() + 4) / 5)) {
    float v[5] = {};
    Read(line, "(5F10.0)", v[0], v[1], v[2], v[3], v[4]);
    for (int i = 0; i < 5 && next < values.size(); ++i) values[next++] = v[i];
  }
}

Globals ReadGlobals(RecordStore& store) {
  Globals g;
  std::string data;
  auto three = [&](std::string_view key, std::array<float, 3>& v) {
    if (store.jFindRec(key, data) == 1) Read(data, "(3F10.0)", v[0], v[1], v[2]);
  };
  three("ZETT", g.zero);
  three("CZET", g.zeroCodes);
  three("AXID", g.axial);
  three("CAXI", g.axialCodes);
  three("ELAM", g.lambdas);
  g.haveWave = store.jFindRec("WAVE", data) == 1;
  if (g.haveWave) Read(data, "(2F10.0)", g.wave, g.waveSigma);
  if (!g.haveWave) g.wave = g.lambdas[0];
  if (store.jFindRec("CWAV", data) == 1) Read(data, "(F10.0)", g.waveCode);
  ReadRows(store, "BKGR", g.background);
  ReadRows(store, "CBKG", g.backgroundCodes);
  return g;
}

// As many lines of five as reach the last coefficient or code that is not 0; one at least.
int BackgroundLines(const Globals& g) {
  int used = 1;
  for (int i = 0; i < kGlobalsBackgroundRows; ++i) {
    if (g.background[i] != 0.0f || g.backgroundCodes[i] != 0.0f) used = i + 1;
  }
  return (used + 4) / 5;
}

std::vector<Record> GlobalsRecords(const Globals& g) {
  auto three = [](std::string_view key, std::string_view layout, const std::array<float, 3>& v) {
    return MakeRecord(key, layout, v[0], v[1], v[2]);
  };
  std::vector<Record> records = {
      three("ZETT", "(3f10.5)", g.zero),
      three("CZET", "(3f10.3)", g.zeroCodes),
      three("AXID", "(3f10.5)", g.axial),
      three("CAXI", "(3f10.3)", g.axialCodes),
      three("ELAM", "(3f10.6)", g.lambdas),
      MakeRecord("WAVE", "(2f10.6)", g.wave, g.waveSigma),
      MakeRecord("CWAV", "(f10.3)", g.waveCode),
  };
  const std::size_t count = static_cast<std::size_t>(BackgroundLines(g)) * 5;
  const std::vector<FormatArg> values(g.background.begin(), g.background.begin() + count);
  const std::vector<FormatArg> codes(g.backgroundCodes.begin(), g.backgroundCodes.begin() + count);
  for (Record& line : MakeRecords("BKGR", "(5f10.1)", values)) records.push_back(std::move(line));
  for (Record& line : MakeRecords("CBKG", "(5f10.3)", codes)) records.push_back(std::move(line));
  return records;
}

// A value with its code field and refine box.
void PutRefinable(Toolkit& toolkit, int value, int code, int box, float v, float c) {
  toolkit.WDialogPutReal(value, v);
  toolkit.WDialogPutReal(code, c);
  toolkit.WDialogPutCheckBox(box, c != 0.0f ? 1 : 0);
}

void TakeRefinable(DialogValues& values, Toolkit& toolkit, CodewordNumbering& codes, int value,
                   int code, int box, float& v, float& c) {
  v = static_cast<float>(values.Real(value));
  c = codes.Take(toolkit.WDialogGetCheckBox(box) != 0, values.Real(code));
}

void PutGlobals(Toolkit& toolkit, const Globals& g) {
  for (int i = 0; i < 3; ++i) {
    PutRefinable(toolkit, kGlobalsZeroFirst + i, kGlobalsZeroFirst + 3 + i,
                 kGlobalsZeroFirst + 6 + i, g.zero[i], g.zeroCodes[i]);
    PutRefinable(toolkit, kGlobalsAxialFirst + i, kGlobalsAxialFirst + 3 + i,
                 kGlobalsAxialFirst + 6 + i, g.axial[i], g.axialCodes[i]);
  }
  PutRefinable(toolkit, kGlobalsWavelength, kGlobalsWavelength + 1, kGlobalsWavelength + 2, g.wave,
               g.waveCode);
  toolkit.WGridRows(kGlobalsBackgroundGrid, kGlobalsBackgroundRows);
  for (int row = 1; row <= kGlobalsBackgroundRows; ++row) {
    toolkit.WGridLabelRow(kGlobalsBackgroundGrid, row, std::to_string(row));
    toolkit.WGridPutCellReal(kGlobalsBackgroundGrid, 1, row, g.background[row - 1]);
    toolkit.WGridPutCellReal(kGlobalsBackgroundGrid, 2, row, g.backgroundCodes[row - 1]);
    toolkit.WGridPutCellCheckBox(kGlobalsBackgroundGrid, 3, row,
                                 g.backgroundCodes[row - 1] != 0.0f ? 1 : 0);
  }
}

void TakeGlobals(DialogValues& values, Toolkit& toolkit, CodewordNumbering codes, Globals& g) {
  for (int i = 0; i < 3; ++i) {
    TakeRefinable(values, toolkit, codes, kGlobalsZeroFirst + i, kGlobalsZeroFirst + 3 + i,
                  kGlobalsZeroFirst + 6 + i, g.zero[i], g.zeroCodes[i]);
    TakeRefinable(values, toolkit, codes, kGlobalsAxialFirst + i, kGlobalsAxialFirst + 3 + i,
                  kGlobalsAxialFirst + 6 + i, g.axial[i], g.axialCodes[i]);
  }
  TakeRefinable(values, toolkit, codes, kGlobalsWavelength, kGlobalsWavelength + 1,
                kGlobalsWavelength + 2, g.wave, g.waveCode);
  for (int row = 1; row <= kGlobalsBackgroundRows; ++row) {
    g.background[row - 1] = static_cast<float>(values.CellReal(kGlobalsBackgroundGrid, 1, row));
    const bool refine = toolkit.WGridGetCheckBox(kGlobalsBackgroundGrid, 3, row) != 0;
    g.backgroundCodes[row - 1] =
        codes.Take(refine, values.CellReal(kGlobalsBackgroundGrid, 2, row));
  }
}

}  // namespace

void EditGlobalsDialog(ShellState& state, Toolkit& toolkit) {
  EditCommand edit(state, toolkit, "Edit globals");
  Globals g;
  if (!edit.Read([&](RecordStore& store) { g = ReadGlobals(store); })) return;
  const CodewordNumbering codes(HighestCodewordGroup(state, toolkit));
  edit.Load(kGlobalsDialog);
  PutGlobals(toolkit, g);
  // Each OK numbers new codes afresh, so that a bad value's retry takes the same numbers.
  const int result =
      edit.Run(nullptr, [&](DialogValues& values) { TakeGlobals(values, toolkit, codes, g); });
  if (result != kEditCancelled) edit.Write(GlobalsRecords(g));
}

}  // namespace kaldena
