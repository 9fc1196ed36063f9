#include "engine/result_records.h"

#include <fstream>
#include <sstream>

#include "store/record_catalogue.h"
#include "store/record_keys.h"

namespace kaldena {

namespace {

template <size_t N>
std::array<float, N> Values(const RefinableRow<kPhaseSlots>& v, const std::array<int, N>& slots) {
  std::array<float, N> out{};
  for (size_t i = 0; i < N; ++i) out[i] = v[slots[i]].value;
  return out;
}

template <size_t N>
std::array<float, N> Esds(const std::array<float, kPhaseSlots>& e, const std::array<int, N>& slots) {
  std::array<float, N> out{};
  for (size_t i = 0; i < N; ++i) out[i] = e[slots[i] - 1];
  return out;
}

// A row of values and the matching row of esds by one layout.
template <size_t N>
void AddPair(std::vector<Record>& out, std::string_view key, std::string_view esdKey,
             std::string_view layout, const std::array<float, N>& values,
             const std::array<float, N>& esds) {
  std::vector<FormatArg> v(values.begin(), values.end()), e(esds.begin(), esds.end());
  for (Record& r : MakeRecords(key, layout, v)) out.push_back(std::move(r));
  for (Record& r : MakeRecords(esdKey, layout, e)) out.push_back(std::move(r));
}

}  // namespace

void ResultRecords::AddPhase(const Phase& phase, const std::array<float, kPhaseSlots>& esds,
                             const std::array<float, 6>& cellEsds, const PhaseContents& contents,
                             bool split) {
  const auto& v = phase.values;
  records_.push_back(MakeRecord("SCAL", WriteLayout("SCAL"), v[kScale].value, v[kOverallB].value));
  records_.push_back(
      MakeRecord("SDSC", WriteLayout("SDSC"), esds[kScale - 1], esds[kOverallB - 1]));
  AddPair<6>(records_, "CELL", "SDCE", "3f10.6,3f10.5", phase.cell, cellEsds);
  records_.push_back(MakeRecord("PHMW", WriteLayout("PHMW"), contents.operators, contents.mass,
                                contents.absorption, contents.electrons));
  if (split) {
    const std::array<int, 6> widths = {3, 4, 5, 18, 19, 20}, shapes = {15, 16, 17, 21, 22, 23};
    AddPair<6>(records_, "HWTH", "SDHW", "6f10.6", Values(v, widths), Esds(esds, widths));
    AddAsymmetry(phase, esds);
    AddPair<6>(records_, "PKSH", "SDPK", "6f10.6", Values(v, shapes), Esds(esds, shapes));
  } else {
    AddPair<3>(records_, "HWTH", "SDHW", "3f10.6", Values<3>(v, {3, 4, 5}), Esds<3>(esds, {3, 4, 5}));
    AddAsymmetry(phase, esds);
    AddPair<3>(records_, "PKSH", "SDPK", "3f10.6", Values<3>(v, {15, 16, 17}), Esds<3>(esds, {15, 16, 17}));
  }
  AddPair<2>(records_, "STSZ", "SDTZ", "2f10.6", Values<2>(v, {24, 25}), Esds<2>(esds, {24, 25}));
}

void ResultRecords::AddAsymmetry(const Phase& phase, const std::array<float, kPhaseSlots>& esds) {
  const auto& v = phase.values;
  const float o1 = v[kOrientation1].value, a = v[kAsymmetry].value, o2 = v[kOrientation2].value;
  // The orientation type stands behind the three values, so that a refinement keeps it.
  records_.push_back(phase.celluloseOrientation
                         ? MakeRecord("ASYM", "3f10.6,i5", o1, a, o2, 1)
                         : MakeRecord("ASYM", WriteLayout("ASYM"), o1, a, o2));
  records_.push_back(MakeRecord("SDAS", WriteLayout("SDAS"), esds[kOrientation1 - 1],
                                esds[kAsymmetry - 1], esds[kOrientation2 - 1]));
}

void ResultRecords::AddAtomType(const AtomType& type) {
  records_.push_back(
      MakeRecord("CNOM", WriteLayout("CNOM"), type.symbol, type.fPrime, type.fDoublePrime));
}

void ResultRecords::AddAtom(const Atom& atom, const std::array<float, kAtomColumns>& esds) {
  const auto& v = atom.values;
  const float site = static_cast<float>(atom.siteFactor);
  records_.push_back(MakeRecord("XYZ ", WriteLayout("XYZ "), atom.label, atom.type, v[kAtomX].value,
                                v[kAtomY].value, v[kAtomZ].value, v[kAtomOccupation].value * site,
                                v[kAtomB].value, atom.siteFactor, atom.yCoupling, atom.zCoupling,
                                atom.bCoupling));
  if (atom.anisotropic) {
    records_.push_back(MakeRecord("BETA", WriteLayout("BETA"), atom.label, v[6].value, v[7].value,
                                  v[8].value, v[9].value, v[10].value, v[11].value));
  }
  records_.push_back(MakeRecord("SDXY", WriteLayout("SDXY"), atom.label, esds[0], esds[1], esds[2],
                                esds[kAtomOccupation - 1] * site, esds[kAtomB - 1]));
  if (atom.anisotropic) {
    records_.push_back(MakeRecord("SDBE", WriteLayout("SDBE"), atom.label, esds[5], esds[6],
                                  esds[7], esds[8], esds[9], esds[10]));
  }
}

void ResultRecords::AddGlobals(const EngineState& state, const std::array<float, kGlobalSlots>& esds) {
  const auto& g = state.globals;
  auto six = [&](std::string_view key, int first) {
    records_.push_back(MakeRecord(key, "6f10.6", g[first].value, g[first + 1].value,
                                  g[first + 2].value, esds[first - 1], esds[first], esds[first + 1]));
  };
  six("ZETT", kZeroPoint);
  six("AXID", kAxial1);
  if (g[kWavelength].fraction > 0) {
    records_.push_back(
        MakeRecord("WAVE", WriteLayout("WAVE"), g[kWavelength].value, esds[kWavelength - 1]));
  }
  records_.push_back(MakeRecord("BGSC", WriteLayout("BGSC"), g[kBackgroundFactor].value,
                                esds[kBackgroundFactor - 1]));
  if (state.controls.job.background >= 1) return;
  std::vector<FormatArg> values, sds;
  for (int n = 0; n < kBackgroundTerms; ++n) {
    values.emplace_back(g[kFirstBackground + n].value);
    sds.emplace_back(esds[kFirstBackground - 1 + n]);
  }
  for (Record& r : MakeRecords("BKGR", WriteLayout("BKGR"), values))
    records_.push_back(std::move(r));
  for (Record& r : MakeRecords("SDBK", WriteLayout("SDBK"), sds)) records_.push_back(std::move(r));
}

bool WriteResultRecords(const std::string& temporaryFile, const std::vector<Record>& records) {
  std::ifstream in(temporaryFile, std::ios::binary);
  if (!in) return false;
  std::ostringstream kept;
  for (std::string line; ReadRecordLine(in, line);) {
    if (RecordKeyMatches(line, "SCAL")) break;
    kept << PadRecord(line) << '\n';
  }
  in.close();
  std::ofstream out(temporaryFile, std::ios::binary | std::ios::trunc);
  if (!out) return false;
  out << kept.str();
  for (const Record& record : records) out << PadRecord(record) << '\n';
  return static_cast<bool>(out);
}

}  // namespace kaldena
