// The engine's model of one run: controls, instrument, phases, atoms, the numbered
// least-squares parameters and the pattern points. Built anew by each run and cleared by
// ZeroEngineState, so that two runs in one process never see each other.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "crystal/space_group.h"
#include "engine/list_file.h"
#include "engine/reflection_store.h"
#include "store/job_records.h"
#include "util/limits.h"
#include "util/temporary_file.h"

namespace kaldena {

// A refinable value with the fraction (multiplier) of its parameter and the parameter's
// number: 0 fixed, 1 to 400 an index into the shift vector, 500 + n tied to parameter n.
struct Refinable {
  float value = 0;
  float fraction = 0;
  int number = 0;
};

inline constexpr int kTiedOffset = 500;

// Slots of the global table (from 1).
enum GlobalSlot {
  kZeroPoint = 1,
  kSampleShift = 2,
  kTransparency = 3,
  kFirstBackground = 4,  // 25 coefficients, 4 to 28
  kAxial1 = 29,          // AXID: source, detector, transparency asymmetry
  kAxial2 = 30,
  kTransparencyAsymmetry = 31,
  kWavelength = 32,
  kBackgroundFactor = 33,
};
inline constexpr int kGlobalSlots = 33;
inline constexpr int kBackgroundTerms = 25;

// Slots of the phase table (from 1).
enum PhaseSlot {
  kScale = 1,
  kOverallB = 2,
  kHalfwidthU = 3,  // U, V, W at 3 to 5
  kMetricA = 6,     // A, B, C, F (kl), E (hl), D (hk) at 6 to 11
  kOrientation1 = 12,
  kOrientation2 = 13,
  kAsymmetry = 14,
  kShapeA = 15,        // NA, NB, NC at 15 to 17
  kRightHalfwidthU = 18,
  kRightShapeA = 21,
  kStackingFault = 24,
  kSize = 25,
};
inline constexpr int kPhaseSlots = 35;

// Columns of the atom table (from 1): note B before the occupation.
enum AtomColumn { kAtomX = 1, kAtomY = 2, kAtomZ = 3, kAtomB = 4, kAtomOccupation = 5, kAtomBeta11 = 6 };
inline constexpr int kAtomColumns = 11;

template <int N>
struct RefinableRow {
  std::array<Refinable, N> slots{};
  Refinable& operator[](int slot) { return slots[slot - 1]; }
  const Refinable& operator[](int slot) const { return slots[slot - 1]; }
};

struct AtomType {
  std::string symbol;  // element symbol of the ANOM line, two characters
  // a1, b1, ..., a4, b4, c of f0(s) = c + sum a exp(-b s^2); for neutrons all 0 but c, the
  // scattering length.
  std::array<float, 9> formFactor{};
  float fPrime = 0;  // X-rays only
  float fDoublePrime = 0;
  int element = 0;  // Z of the element that the symbol names, 0 when it names none
  float mass = 0;   // 0 when the element is not known
};

struct Atom {
  std::string label;  // 4 characters
  int type = 1;       // into the atom types, from 1
  int siteFactor = 1;
  bool siteFactorFromGroup = false;  // the line left it blank or 0
  int yCoupling = 0, zCoupling = 0, bCoupling = 0;  // 0 to 5
  bool anisotropic = false;                          // a BETA line was read
  RefinableRow<kAtomColumns> values;
};

struct Phase {
  std::string title;
  int atoms = 0;
  int firstAtom = 0;  // index into EngineState::atoms
  // PHNA vectors: preferred orientation 1, halfwidth anisotropy, preferred orientation 2.
  std::array<std::array<float, 3>, 3> vectors{};
  bool celluloseOrientation = false;  // ASYM (4) = 1
  SpaceGroupInfo group;
  std::array<float, 6> cell{};  // a, b, c, alpha, beta, gamma
  int laueFlag = 0;            // ties of the metric slots: 1 B to A, 2 B and C to A
  RefinableRow<kPhaseSlots> values;
};

struct ParameterLimit {
  int number = 0;  // signed: negative a lower limit, positive an upper one
  float limit = 0;
  // During one pass over the shifts: kLimitHit when the limit stopped the parameter (which
  // is then held for the next cycle), kLimitLooked when it was checked; 0 between passes.
  int mark = 0;
};
inline constexpr int kLimitHit = 1000;
inline constexpr int kLimitLooked = 2000;

struct ParameterBlock {
  int watched = 0;  // group numbers
  float limit = 0;
  int blocked = 0;
  // The groups' parameter numbers once numbered (0 when the group is not refined), and
  // whether a value of the watched one went below the limit during the cycles.
  int watchedParameter = 0;
  int blockedParameter = 0;
  bool active = false;
};

// A restraint of one central atom: a distance to each partner, and with four partners (a
// tetrahedron) or six (an octahedron, opposite partners in the order 1-2, 3-4, 5-6) also the
// partners' edge lengths that the central distance implies.
struct Restraint {
  std::string name;  // label of the central atom
  float distance = 0;
  float weight = 0;
  std::vector<std::pair<std::string, int>> partners;  // atom label and symmetry code
  int code = 1555;                                     // symmetry code of the central atom
};

// Instrument and least-squares controls read from the records.
struct RunControls {
  std::string title;
  int format = 1;
  JobControls job;
  int jobType = 1;  // 1 X-ray refinement, 2 neutron refinement, 3 X-ray and 4 neutron calculation
  bool calculation = false;
  bool comparison = false;
  std::array<int, 2> output{};  // UTPT: reflection listing, correlation limit
  std::array<int, 14> display{};
  std::array<float, 3> wavelengths{};  // alpha 1, alpha 2, ratio
  bool wavelengthRefined = false;
  std::array<float, 8> rlim{};  // peak range, monochromator, mu R, asymmetry limit, synchrotron,
                                // Guinier, autodivergence, flat plate mu T
  int cycles = 0;
  float termination = 0;            // shift over standard deviation
  std::array<float, 4> relaxation{};  // atomic, thermal, profile, other
  float start = 0, step = 0, stop = 0;
  float damping = 1.0f;
  std::vector<ParameterLimit> limits;
  std::vector<ParameterBlock> blocks;
  std::vector<std::array<float, 2>> excludedRegions;
  int calibration = 0;                              // ICLT
  std::vector<double> polynomial;                   // POLY
  std::vector<std::array<float, 3>> splinePoints;   // SPLC: X, Y, P
  std::array<float, 2> chebyshevInterval{};
  std::array<float, 4> crystallinity{};
  float restraintWeight = 0;
};

// The pattern points that all later stages use: the measured ones and, behind them, the grid
// extended for the tails of reflections above the range.
struct PatternPoints {
  int count = 0;  // measured points; x and dx run further
  std::vector<float> x, dx, observed, weight, fileBackground;
};

// How a reflection's derivative row meets the profile at a point: the factor that multiplies
// the row entry of a parameter in the sweep over the points.
enum class RowFactor : unsigned char {
  kOne = 0,           // structure-factor values: the row holds d F2 / d value
  kWidth,             // dH
  kRightWidth,        // dHR
  kPosition,          // shifts of the peak: cd d + dP
  kDivergenceSL,      // numeric derivatives of the axial-divergence profile
  kDivergenceHL,
  kShape,             // dEta
  kRightShape,        // dEtaR
  kAsymmetry,         // dA, or the Rietveld form
  kTransparency,      // the transparency asymmetry
  kTheta,             // metric and wavelength: cd d + dTheta
};

// Work arrays of the least-squares cycles, allocated by the cycle stage.
struct CycleWork {
  std::vector<float> normal;  // kMaxParameters x kMaxParameters, row-major, upper part summed
  // The derivative rows (kMaxParameters each) and tan theta of the reflections whose terms
  // stand, in kMaxReflectionsAtPoint slots: a reflection holds a slot from its terms until
  // the sweep has passed the last point that it reaches.
  std::vector<float> rows;
  std::array<float, kMaxReflectionsAtPoint> slotTan{};
  std::vector<int> rowSlot;    // per reflection: its slot, -1 for none
  std::vector<int> freeSlots;  // taken from the back
  std::array<float, kMaxParameters> lastShifts{};
  // Row factor of each parameter for the reflections of each phase.
  std::vector<std::array<RowFactor, kMaxParameters>> factors;
  // Per reflection: phase angle of the structure factor, and the sums of the sweep for the
  // extracted intensities.
  std::vector<float> phaseAngle, observedIntensity, intensityVariance, calculatedIntensity;
  // Per point: background, the calculated pattern and each phase's part of it.
  std::vector<float> background, calculated;
  std::vector<std::vector<float>> phaseCalculated;
  PointReflections reach;
};

// A phase's fit as the output stage finds it.
struct PhaseFit {
  float braggR = 0;     // derived Bragg R-factor, percent
  int reflections = 0;  // in the range and outside the excluded regions
};

// How the cycles of a refinement ended.
enum class CycleEnd {
  kRunning = 0,
  kConverged,   // by the shift test; also every calculation and comparison
  kCycleLimit,  // the cycle count was used up
  kStopped,     // the stop flag
  kDiverging,   // the step control rejected too many tries in a row
};

// What the cycles leave for the output stage and the caller: the residuals of the last
// sweep and the shifts of the last cycle.
struct CycleSummary {
  int cycles = 0;         // accepted cycles run
  int keptCycle = 0;      // the cycle whose parameters the run keeps (0: the start)
  int rejectedTries = 0;  // steps that the step control rejected, over the run
  CycleEnd end = CycleEnd::kRunning;
  int points = 0;  // points that took part
  float rp = 0, rwp = 0, rpBackground = 0, chi2 = 0;
  float durbinWatson = 0, durbinWatsonWeighted = 0;
  float esdFactor = 0;
  int restraints = 0;  // distances restrained; their R values, each at most 999.99
  float restraintR = 0, restraintRw = 0;
  double restraintWeightedResidual2 = 0, restraintWeightedTarget2 = 0;
  double sumWeightedDiff2 = 0, sumWeightedObserved2 = 0;
  float largestRatio = 0, averageRatio = 0;  // shift / esd
  std::string largestName;
  double condition = 0;
  std::vector<PhaseFit> phaseFits;  // one per phase, from the output stage
};

struct EngineState {
  bool debug = false;
  // Files of the run.
  std::string projectFile;
  std::string directory;  // with its separator, or empty
  std::string baseName;
  RunFileNames files;
  // The run's own copy of the project, beside the output parameter file, that the result
  // records are written into and that replaces the parameter file at the end of a refinement.
  TemporaryFile temporary;
  // The summary and Fourier files as written, put in their places when the run succeeds.
  std::vector<PendingFile> outputs;
  int backgroundFileMarker = 0;  // 12 when a background file is named
  ListFile list;

  RunControls controls;
  std::vector<float> cylinderAbsorption;  // 1/A* by 0.1 degree theta, when mu R is above 0
  RefinableRow<kGlobalSlots> globals;
  std::vector<AtomType> atomTypes;
  std::vector<Phase> phases;
  std::vector<Atom> atoms;
  std::vector<Restraint> restraints;
  PatternPoints points;

  // Least squares: the count of parameters, the shift of each and its relaxation factor.
  int parameters = 0;
  std::array<float, kMaxParameters> shifts{};
  std::array<float, kMaxParameters> relaxation{};

  ReflectionStore reflections;
  CycleWork work;
  CycleSummary summary;
  std::vector<std::string> resultRecords;  // of the last cycle, for the temporary file
};

// Clears everything of a previous run.
void ZeroEngineState(EngineState& state);

}  // namespace kaldena
