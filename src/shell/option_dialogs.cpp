// The tools' options dialogs over their records.
#include "shell/option_dialogs.h"

#include <algorithm>
#include <functional>

#include "shell/edit_command.h"
#include "shell/project_lifecycle.h"
#include "shell/shell_services.h"
#include "store/record_catalogue.h"
#include "tools/distance_project.h"
#include "tools/fourier_options.h"
#include "util/column_format.h"
#include "util/text.h"

namespace kaldena {
namespace {

void LoadDialog(Toolkit& toolkit, int dialog) {
  toolkit.WDialogParent(kMainWindow);
  toolkit.WDialogLoad(dialog);
}

// Replaces the lines of each record's key, or adds the record where the key is absent.
void WriteRecords(ShellState& state, Toolkit& toolkit, std::initializer_list<Record> records) {
  ShellReporter reporter(state, toolkit);
  RecordStore store(reporter);
  const std::string file = InProjectDir(state, state.parameterFileName);
  for (const Record& record : records) {
    const Record one[] = {record};
    if (store.jUpdateRec(file, one) == 0) store.jAddRec(file, one);
  }
}

// Shows the loaded dialog and waits for OK or Cancel; true for OK. The dialog is unloaded
// after `take` has read its fields.
bool RunOptionsDialog(Toolkit& toolkit, const std::function<void()>& take) {
  toolkit.WDialogShow(-1, -1, 0, kDialogModeless);
  int button = 0;
  while ((button = NextDialogButton(toolkit)) != 0 && button != kIdOk && button != kIdCancel) {
  }
  const bool accepted = button == kIdOk;
  if (accepted) take();
  toolkit.WDialogUnload();
  return accepted;
}

float GetFloat(Toolkit& toolkit, int field) {
  return static_cast<float>(toolkit.WDialogGetReal(field));
}

}  // namespace

void DistanceOptionsDialog(ShellState& state, Toolkit& toolkit) {
  DistanceLimits limits;
  if (!ReadParameterFile(state, toolkit,
                         [&](RecordStore& store) { limits = ReadDistanceLimits(store); })) {
    return;
  }
  LoadDialog(toolkit, kDistanceOptionsDialog);
  toolkit.WDialogPutReal(kDistanceMinimum, limits.dmin);
  toolkit.WDialogPutReal(kDistanceMaximum, limits.dmax);
  toolkit.WDialogPutReal(kAngleMinimum, limits.amin);
  toolkit.WDialogPutReal(kAngleMaximum, limits.amax);
  toolkit.WDialogPutCheckBox(kDistanceExtended, limits.Extended() ? 1 : 0);
  const bool accepted = RunOptionsDialog(toolkit, [&] {
    limits.dmin = GetFloat(toolkit, kDistanceMinimum);
    limits.dmax = GetFloat(toolkit, kDistanceMaximum);
    limits.amin = GetFloat(toolkit, kAngleMinimum);
    limits.amax = GetFloat(toolkit, kAngleMaximum);
    limits.option = toolkit.WDialogGetCheckBox(kDistanceExtended) != 0 ? 3 : 2;
  });
  if (accepted) WriteRecords(state, toolkit, {DistanceLimitsRecord(limits)});
}

void TableOptionsDialog(ShellState& state, Toolkit& toolkit) {
  // Decimals of coordinates, occupancy form, decimals of anisotropic factors, beta or U.
  std::array<int, 4> v{4, 1, 4, 1};
  if (!ReadParameterFile(state, toolkit, [&](RecordStore& store) {
        std::string data;
        if (store.jFindRec("TABL", data) == 1 &&
            Read(data, "(4i5)", v[0], v[1], v[2], v[3]) != ReadStatus::kOk) {
          v = {4, 1, 4, 1};
        }
      })) {
    return;
  }
  auto clamp = [&v] {
    v = {std::clamp(v[0], 2, 5), std::clamp(v[1], 1, 2), std::clamp(v[2], 2, 5),
         std::clamp(v[3], 1, 2)};
  };
  clamp();
  LoadDialog(toolkit, kTableOptionsDialog);
  toolkit.WDialogPutInteger(kTableDecimals, v[0]);
  toolkit.WDialogPutInteger(kTableOccupancy, v[1]);
  toolkit.WDialogPutInteger(kTableAnisoDecimals, v[2]);
  toolkit.WDialogPutRadioButton(v[3] == 2 ? kTableU : kTableBeta);
  const bool accepted = RunOptionsDialog(toolkit, [&] {
    v = {toolkit.WDialogGetInteger(kTableDecimals), toolkit.WDialogGetInteger(kTableOccupancy),
         toolkit.WDialogGetInteger(kTableAnisoDecimals),
         toolkit.WDialogGetRadioButton(kTableBeta, kTableU)};
    clamp();
  });
  if (accepted) WriteRecords(state, toolkit, {MakeRecord("TABL", "(4i5)", v[0], v[1], v[2], v[3])});
}

void FourierOptionsDialog(ShellState& state, Toolkit& toolkit) {
  FourierOptions o;
  if (!ReadParameterFile(state, toolkit,
                         [&](RecordStore& store) { o = ReadFourierOptions(store); })) {
    return;
  }
  LoadDialog(toolkit, kFourierOptionsDialog);
  // The legacy type 1 has no button: none is on, and the type stays unless one is chosen.
  if (o.mapType >= 2) toolkit.WDialogPutRadioButton(kFourierMapFirst + o.mapType - 2);
  toolkit.WDialogPutInteger(kFourierPositiveLevel, o.positiveLevel);
  toolkit.WDialogPutInteger(kFourierNegativeLevel, o.negativeLevel);
  toolkit.WDialogPutReal(kFourierF000, o.f000);
  toolkit.WDialogPutReal(kFourierMaxSin, o.maxSinThetaOverLambda);
  toolkit.WDialogPutReal(kFourierMinSin, o.minSinThetaOverLambda);
  toolkit.WDialogPutReal(kFourierSigma, o.sigmaCutOff);
  for (int i = 0; i < 6; ++i) toolkit.WDialogPutReal(kFourierLimitsFirst + i, o.limits[i]);
  toolkit.WDialogPutString(kFourierPlotTitle, o.plotTitle);
  const bool accepted = RunOptionsDialog(toolkit, [&] {
    const int chosen = toolkit.WDialogGetRadioButton(kFourierMapFirst, kFourierMapLast);
    if (chosen > 0) o.mapType = chosen + 1;
    o.positiveLevel = toolkit.WDialogGetInteger(kFourierPositiveLevel);
    o.negativeLevel = toolkit.WDialogGetInteger(kFourierNegativeLevel);
    o.f000 = GetFloat(toolkit, kFourierF000);
    o.maxSinThetaOverLambda = GetFloat(toolkit, kFourierMaxSin);
    o.minSinThetaOverLambda = GetFloat(toolkit, kFourierMinSin);
    o.sigmaCutOff = GetFloat(toolkit, kFourierSigma);
    for (int i = 0; i < 6; ++i) o.limits[i] = GetFloat(toolkit, kFourierLimitsFirst + i);
    o.plotTitle = toolkit.WDialogGetString(kFourierPlotTitle);
  });
  if (accepted) {
    WriteRecords(state, toolkit,
                 {FourierOrderRecord(o), FourierLimitsRecord(o), PlotTitleRecord(o)});
  }
}

}  // namespace kaldena
