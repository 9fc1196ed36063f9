#include "shell/peak_dialog.h"

#include <vector>

#include "shell/project_lifecycle.h"
#include "shell/shell_services.h"
#include "tools/fourier_add_peaks.h"

namespace kaldena {

namespace {

void FillGrid(Toolkit& toolkit, const std::vector<PeakEntry>& peaks) {
  toolkit.WGridRows(kPeakGrid, static_cast<int>(peaks.size()));
  for (int row = 1; row <= static_cast<int>(peaks.size()); ++row) {
    const PeakEntry& p = peaks[row - 1];
    toolkit.WGridLabelRow(kPeakGrid, row, PeakRowLabel(row));
    toolkit.WGridPutCellString(kPeakGrid, 1, row, p.label);
    toolkit.WGridPutCellReal(kPeakGrid, 2, row, p.x);
    toolkit.WGridPutCellReal(kPeakGrid, 3, row, p.y);
    toolkit.WGridPutCellReal(kPeakGrid, 4, row, p.z);
  }
}

}  // namespace

void AddAtomsDialog(ShellState& state, Toolkit& toolkit) {
  ShellReporter reporter(state, toolkit);
  std::vector<PeakEntry> peaks;
  const std::string peakFile = InProjectDir(state, state.projectBaseName + ".prm");
  if (ReadPeakChoices(peakFile, peaks, reporter) != AddPeakStatus::kOk) return;
  toolkit.WDialogParent(kMainWindow);
  toolkit.WDialogLoad(kPeakDialog);
  FillGrid(toolkit, peaks);
  toolkit.WDialogShow(-1, -1, 0, kDialogModeless);
  int row = 0;  // Cancel
  while (const int button = NextDialogButton(toolkit)) {
    if (button == kPeakAdd) {
      row = toolkit.WDialogGetInteger(kPeakChosenRow);
      break;
    }
    if (button == kIdCancel) break;
  }
  toolkit.WDialogUnload();
  if (row != 0) AddPeakAsAtom(InProjectDir(state, state.parameterFileName), peaks, row, reporter);
}

}  // namespace kaldena
