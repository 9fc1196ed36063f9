// The atom types of a run: element, form factor or scattering length, anomalous terms.
#include <algorithm>

#include "crystal/elements.h"
#include "engine/input_stages.h"
#include "util/column_format.h"
#include "util/text.h"

namespace kaldena {

namespace {

// A symbol without a built-in entry is given by table: AXTB (a1 to a4), BXTB (b1 to b4) and
// CXTB (c), one line of each for every such type, in the order of the types.
bool ReadTableType(InputRecords& in, AtomType& type) {
  std::array<float, 4> a{}, b{};
  float c = 0;
  if (in.RequiredValues("AXTB", " AXTB missing", "(10X,4F10.0)", a) != RecordRead::kOk ||
      in.RequiredValues("BXTB", " BXTB missing", "(10X,4F10.0)", b) != RecordRead::kOk ||
      in.Required("CXTB", " CXTB missing", "(10X,F10.0)", c) != RecordRead::kOk) {
    return false;
  }
  for (int i = 0; i < 4; ++i) {
    type.formFactor[2 * i] = a[i];
    type.formFactor[2 * i + 1] = b[i];
  }
  type.formFactor[8] = c;
  return true;
}

void SetBuiltIn(AtomType& type, int z, bool xray, float wavelength) {
  const ScatteringData data = GetScatteringData(xray ? wavelength : 0.0f, z);
  if (xray) {
    std::copy(data.begin(), data.begin() + 9, type.formFactor.begin());
  } else {
    // The scattering length is the constant term; the anomalous terms do not apply.
    type.formFactor.fill(0);
    type.formFactor[8] = data[9];
    type.fPrime = type.fDoublePrime = 0;
  }
}

}  // namespace

bool ReadAtomTypes(InputRecords& in, EngineState& state) {
  const RunControls& c = state.controls;
  const int count = std::min(c.job.atomTypes, kMaxAtomTypes);
  if (count <= 0) {
    state.list.Line(" No scattering sets given");
    return false;
  }
  const bool xray = c.job.IsXray();
  for (int i = 0; i < count; ++i) {
    AtomType type;
    std::string symbol;
    const RecordRead read =
        in.Next("ANOM", "(A4,6X,2F9.0)", symbol, type.fPrime, type.fDoublePrime);
    if (read != RecordRead::kOk) {
      if (read == RecordRead::kMissing) state.list.Line(" Error reading anom");
      in.Fail();
      return false;
    }
    type.symbol = symbol.substr(0, 2);
    type.element = ElementNumber(type.symbol);
    if (type.element == 0) {
      if (!ReadTableType(in, type)) return false;
      if (!xray) type.fPrime = type.fDoublePrime = 0;
      // Its scattering comes from the table, its mass from the element it names ("FE", "Fe2").
      type.element = ElementNamed(symbol);
    } else {
      SetBuiltIn(type, type.element, xray, c.wavelengths[0]);
    }
    type.mass = GetAtomicMass(type.element);
    state.atomTypes.push_back(type);
  }
  return true;
}

void ListAtomicData(const EngineState& state, ListFile& list) {
  if (!state.controls.job.IsXray()) {
    list.Line(" NEUTRON SCATTERING LENGTHS");
    for (const AtomType& t : state.atomTypes) {
      list.Line(FormatLine("(1X,A2,F10.4,'   WEIGHT',F10.3)", t.symbol, t.formFactor[8], t.mass));
    }
    return;
  }
  list.Line(" X-RAY FORM FACTORS");
  for (const AtomType& t : state.atomTypes) {
    const auto& f = t.formFactor;
    list.Line(FormatLine("(1X,A2,9F9.4,2F9.4,F10.3)", t.symbol, f[0], f[1], f[2], f[3], f[4],
                         f[5], f[6], f[7], f[8], t.fPrime, t.fDoublePrime, t.mass));
  }
}

}  // namespace kaldena
