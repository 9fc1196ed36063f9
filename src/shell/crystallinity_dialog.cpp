#include "shell/crystallinity_dialog.h"

#include "shell/project_lifecycle.h"
#include "shell/shell_services.h"
#include "tools/crystallinity_record.h"

namespace kaldena {

void CrystallinityDialog(ShellState& state, Toolkit& toolkit) {
  ShellReporter reporter(state, toolkit);
  const std::string parameters = InProjectDir(state, state.parameterFileName);
  CrystallinityInputs in;
  // A parameter file that does not open gives no dialog.
  if (!ReadCrystallinityInputs(parameters, reporter, in)) return;
  in.summary = InProjectDir(state, state.summaryFileName);
  toolkit.WDialogParent(kMainWindow);
  toolkit.WDialogLoad(kCrystallinityDialog);
  toolkit.WDialogPutReal(kCrystallinityMinimum, in.limits.minimum);
  toolkit.WDialogPutReal(kCrystallinityMaximum, in.limits.maximum);
  toolkit.WDialogShow(-1, -1, 0, kDialogModeless);
  Crystallinity result;
  bool calculated = false, accepted = false;
  while (const int button = NextDialogButton(toolkit)) {
    in.limits.minimum = static_cast<float>(toolkit.WDialogGetReal(kCrystallinityMinimum));
    in.limits.maximum = static_cast<float>(toolkit.WDialogGetReal(kCrystallinityMaximum));
    if (button == kCrystallinityCalculate || button == kIdOk) {
      result = CalculateCrystallinity(in.summary, in.limits);
      calculated = result.status == CrystallinityStatus::kOk;
      // A summary that does not read shows as no result.
      if (calculated) {
        toolkit.WDialogPutReal(kCrystallinityResult, result.sWeighted);
      } else {
        toolkit.WDialogClearField(kCrystallinityResult);
      }
    }
    if (button == kIdOk || button == kIdCancel) {
      accepted = button == kIdOk;
      break;
    }
  }
  toolkit.WDialogUnload();
  if (accepted && calculated) WriteCrystallinityRecord(parameters, in.limits, result, reporter);
}

}  // namespace kaldena
