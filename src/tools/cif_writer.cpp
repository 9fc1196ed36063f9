// The CIF writer's driver and its global block: title, atom types, specimen, measurement,
// refinement and the programs used.
#include "tools/cif_writer.h"

#include <cmath>
#include <fstream>
#include <sstream>

#include "tools/cif_text.h"
#include "tools/cif_writer_sections.h"
#include "util/date_text.h"
#include "util/file_names.h"
#include "util/temporary_file.h"
#include "util/text.h"

namespace kaldena {

namespace {

constexpr std::string_view kProgram = "'KALDEN, local Rietveld program'";
constexpr std::string_view kScatteringSource = "International Tables for Crystallography (Vol. IV)";
constexpr int kValueColumn = 35;

// By profile code 1 to 9; profiles 8 and 9 carry a transparency term on their own shape.
constexpr std::string_view kProfileNames[] = {
    "'pseudo-Voigt'",       "'Pearson VII'",  "'Voigt'",        "'pseudo-Voigt'", "'Voigt'",
    "'split pseudo-Voigt'", "'pseudo-Voigt'", "'pseudo-Voigt'", "'Voigt'"};
constexpr std::string_view kMountModes[] = {"'reflection'", "'transmission'"};
constexpr std::string_view kShapes[] = {"'flat_sheet'", "'cylinder'", "'irregular'"};
constexpr std::string_view kMonochromators[] = {"'none'", "'quartz'", "'graphite'", "'Si(111)'"};

std::string Fixed(std::string_view format, float value) { return FormatLine(format, value); }

void TitleAndAuthors(CifOutput& cif, const CifOutProject& p, std::string_view date) {
  cif.Write("('data_global'/)");
  cif.Item("_audit_creation_date", date);
  cif.Write("('_publ_section_title    ',a/)", CifQuoted(Trimmed(p.title)));
  cif.Write("('loop_'/'   _publ_author_name'/'   _publ_author_address')");
  cif.Write("('?'/';'/'?'/';'/)");
}

void AtomTypes(CifOutput& cif, const CifOutProject& p) {
  // A loop needs at least one row to be CIF.
  if (p.types.empty()) return;
  cif.Write("(/'loop_'/'   _atom_type_symbol'/'   _atom_type_description')");
  cif.Write("('   _atom_type_scat_dispersion_real'/'   _atom_type_scat_dispersion_imag')");
  cif.Write("('   _atom_type_scat_source')");
  for (const CifOutAtomType& t : p.types) {
    const std::string symbol = CifValue(Trimmed(t.symbol));
    std::string field = symbol.size() < 2 ? symbol + " " : symbol;
    cif.Write("(3x,a,1x,a,2f8.4,1x,a)", field, field, t.fPrime, t.fDoublePrime,
              CifQuoted(kScatteringSource));
  }
}

void Specimen(CifOutput& cif, const CifOutProject& p) {
  cif.Line("");
  const char* names[] = {"_pd_spec_size_axial", "_pd_spec_size_equat", "_pd_spec_size_thick"};
  for (int i = 0; i < 3; ++i) cif.Item(names[i], Fixed("(f10.3)", p.sample[i]));
  cif.Item("_pd_spec_mounting", "?");
  cif.Item("_pd_spec_mount_mode", kMountModes[p.sampleCodes[0] - 1]);
  cif.Item("_pd_spec_shape", kShapes[p.sampleCodes[1] - 1]);
  for (const char* name : {"_pd_char_particle_morphology", "_pd_char_colour",
                           "_pd_prep_temperature", "_pd_prep_cool_rate", "_pd_prep_pressure"}) {
    cif.Item(name, "?");
  }
}

void Measurement(CifOutput& cif, const CifOutProject& p) {
  cif.Line("");
  const float kelvin = p.sample[3];
  cif.Item("_diffrn_ambient_temperature",
           kelvin > 0 ? FormatLine("(i4)", static_cast<long>(std::lround(kelvin))) : "?");
  cif.Item("_diffrn_source", "'sealed X-ray tube'");
  for (const char* name : {"_diffrn_source_target", "_diffrn_measurement_device_type",
                           "_diffrn_detector", "_diffrn_detector_type"}) {
    cif.Item(name, "?");
  }
  cif.Item("_diffrn_radiation_monochromator", kMonochromators[p.sampleCodes[2] - 1]);
  cif.UnknownText("_pd_instr_location");
  cif.UnknownText("_pd_meas_special_details");
  cif.Item("_pd_meas_scan_method", "step");
  if (p.range && (*p.range)[2] != 0) {
    const auto& r = *p.range;
    const long points = std::lround((r[1] - r[0]) / r[2]);
    cif.Item("_pd_meas_number_of_points", FormatLine("(i5)", points));
    cif.Item("_pd_meas_2theta_range_min", Fixed("(f10.3)", r[0]));
    cif.Item("_pd_meas_2theta_range_max", Fixed("(f10.3)", r[1]));
    cif.Item("_pd_meas_2theta_range_inc", Fixed("(f10.3)", r[2]));
  } else {
    for (const char* name : {"_pd_meas_number_of_points", "_pd_meas_2theta_range_min",
                             "_pd_meas_2theta_range_max", "_pd_meas_2theta_range_inc"}) {
      cif.Item(name, "?");
    }
  }
}

void Refinement(CifOutput& cif, const CifOutProject& p) {
  cif.Line("");
  const int profile = p.job[1];
  cif.Item("_pd_proc_ls_profile_function",
           profile >= 1 && profile <= 9 ? kProfileNames[profile - 1] : std::string_view("?"));
  cif.Item("_pd_proc_ls_background_function", p.job[3] == -1 ? "'Chebyshev'" : "'Polynomial'");
  cif.UnknownText("_pd_proc_ls_special_details");
  const CifOutResiduals* r = p.residuals.empty() ? nullptr : &p.residuals.front();
  if (r) {
    cif.Item("_pd_proc_ls_prof_R_factor", Fixed("(f6.4)", r->rp / 100));
    cif.Item("_pd_proc_ls_prof_wR_factor", Fixed("(f6.4)", r->rwp / 100));
    cif.Item("_pd_proc_ls_prof_wR_expected",
             Fixed("(f6.4)", r->chi2 > 0 ? r->rwp / 100 / std::sqrt(r->chi2) : 0.0f));
  } else {
    for (const char* name : {"_pd_proc_ls_prof_R_factor", "_pd_proc_ls_prof_wR_factor",
                             "_pd_proc_ls_prof_wR_expected"}) {
      cif.Item(name, "?");
    }
  }
  cif.Item("_refine_special_details", "?");
  const char* range[] = {"_pd_proc_2theta_range_min", "_pd_proc_2theta_range_max",
                         "_pd_proc_2theta_range_inc"};
  // The range with the zero-point correction taken off.
  for (int i = 0; i < 3; ++i) {
    cif.Item(range[i], p.range ? Fixed("(f10.3)", (*p.range)[3 + i]) : "?");
  }
  cif.Write("('loop_')");
  if (p.wavelengths) {
    cif.Write("('     _pd_proc_wavelength          ',2f10.6)", (*p.wavelengths)[0],
              (*p.wavelengths)[1]);
  } else {
    cif.Line("     _pd_proc_wavelength          ?");
  }
  cif.UnknownText("_pd_proc_info_data_reduction");
  cif.UnknownText("_pd_calibration_special_details");
  cif.Item("_refine_ls_structure_factor_coef", "Inet");
  cif.Item("_refine_ls_matrix_type", "full");
  cif.Item("_refine_ls_weighting_scheme", "sigma");
  cif.Item("_refine_ls_hydrogen_treatment", "noref");
  cif.Item("_refine_ls_extinction_method", "none");
  cif.Item("_refine_ls_extinction_coef", "?");
  cif.Item("_refine_ls_number_parameters", r ? FormatLine("(i5)", r->parameters) : "?");
  cif.Item("_refine_ls_number_restraints", r ? FormatLine("(i5)", r->restraints) : "?");
  cif.Item("_refine_ls_number_constraints", "?");
  cif.Item("_refine_ls_goodness_of_fit_all",
           r && r->chi2 >= 0 ? Fixed("(f7.2)", std::sqrt(r->chi2)) : "?");
  // The shifts of the last cycle are not kept in the project.
  cif.Item("_refine_ls_shift/su_max", "?");
  cif.Item("_refine_ls_shift/su_mean", "?");
}

void Computing(CifOutput& cif) {
  cif.Line("");
  cif.Item("_computing_data_collection", "?");
  cif.Item("_computing_cell_refinement", kProgram);
  cif.Item("_computing_data_reduction", "'MORLENT, local program'");
  cif.Item("_computing_structure_solution", "?");
  cif.Item("_computing_structure_refinement", kProgram);
  cif.Item("_computing_molecular_graphics", "?");
  cif.Item("_computing_publication_material", kProgram);
}

}  // namespace

void CifOutput::Item(std::string_view name, std::string_view value) {
  std::string text(name);
  text.resize(std::max<size_t>(text.size() + 1, kValueColumn), ' ');
  text += LeftJustify(value);
  out << Format("(a)", Trimmed(text));
}

void CifOutput::UnknownText(std::string_view name) { Write("(a/';'/'?'/';')", name); }

void WriteGlobalBlock(CifOutput& cif, const CifOutProject& project, std::string_view date) {
  TitleAndAuthors(cif, project, date);
  AtomTypes(cif, project);
  Specimen(cif, project);
  Measurement(cif, project);
  Refinement(cif, project);
  Computing(cif);
}

CifStatus WriteCif(std::string_view project, std::string_view cifFile, Reporter& reporter,
                   std::string_view date) {
  CifOutProject records;
  if (ReadCifOutProject(project, records, reporter) != CifOutReadStatus::kOk) {
    reporter.LogLine(" Error opening parfile ");
    return CifStatus::kFailed;
  }
  PendingFile file{Trimmed(cifFile)};
  if (!file.is_open()) {
    reporter.LogLine(" Error opening ciffile ");
    return CifStatus::kFailed;
  }
  CifOutput cif{file};
  WriteGlobalBlock(cif, records, date.empty() ? TodayText() : std::string(date));
  // Each phase's geometry loops go into its own block, as a block may hold a data name only
  // once; the search runs when every block stands, so the blocks wait for it.
  std::set<std::string> blockCodes = {"global"};
  std::vector<std::string> blocks;
  for (int phase = 0; phase < static_cast<int>(records.phases.size()); ++phase) {
    std::ostringstream block;
    CifOutput blockOutput{block};
    const CifStatus status = WritePhaseBlock(blockOutput, records, phase, blockCodes, reporter);
    blocks.push_back(block.str());
    if (status != CifStatus::kOk) {
      for (const std::string& written : blocks) file << written;
      return CifStatus::kFailed;
    }
  }
  const DistanceTable geometry = CalculateDistances(project, reporter);
  for (size_t phase = 0; phase < blocks.size(); ++phase) {
    file << blocks[phase];
    WriteGeometryLoops(cif, geometry, phase);
  }
  if (!geometry.ok) return CifStatus::kFailed;  // the old CIF stays
  if (!file.Publish()) {
    reporter.LogLine(" Error opening ciffile ");
    return CifStatus::kFailed;
  }
  return CifStatus::kOk;
}

std::string CifFileName(std::string_view project) { return ForceExtension(project, "cif"); }

namespace {

std::string RunWithMessage(std::string_view project, Reporter& reporter, std::string_view date,
                           const std::function<void(const std::string&)>& openViewer,
                           std::string_view failure) {
  const std::string cifFile = CifFileName(project);
  if (WriteCif(project, cifFile, reporter, date) != CifStatus::kOk) {
    reporter.LogLine(failure);
    return {};
  }
  if (openViewer) openViewer(cifFile);
  return cifFile;
}

}  // namespace

std::string StartCif(std::string_view project, Reporter& reporter, std::string_view date,
                     const std::function<void(const std::string& cifFile)>& openViewer) {
  reporter.LogLine("Starting CIF");
  return RunWithMessage(project, reporter, date, openViewer, "Error in CIF");
}

std::string RunCif(std::string_view project, Reporter& reporter, std::string_view date,
                   const std::function<void(const std::string& cifFile)>& openViewer) {
  return RunWithMessage(project, reporter, date, openViewer, "Error in kd_cif");
}

}  // namespace kaldena
