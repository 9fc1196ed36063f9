// Fuzzes the readers of outside text: loading a record file, finding every key, normalising
// number lines and the column reader and writer.
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "store/record_store.h"
#include "store/record_text.h"
#include "util/column_format.h"
#include "util/report.h"

namespace {

constexpr const char* kKeys[] = {
    "TITL", "FRMT", "JOBT", "PWDT", "PWBG", "PWWG", "PWUT", "PWPR", "PWSM", "PWFO", "ENVI",
    "UTPT", "DSPL", "ELAM", "WAVE", "CWAV", "RLIM", "RELX", "DAMP", "WRES", "ICLT", "POLY",
    "SPLC", "EXRG", "LIMP", "BLOK", "ZETT", "CZET", "AXID", "CAXI", "BKGR", "SDBK", "CBKG",
    "BGSC", "CBGS", "ANOM", "CNOM", "AXTB", "BXTB", "CXTB", "PHTI", "PHNA", "PHMW", "SPGR",
    "SCAL", "SDSC", "CSCA", "CELL", "SDCE", "CCEL", "ASYM", "SDAS", "CASY", "HWTH", "SDHW",
    "CHWT", "PKSH", "SDPK", "CPKS", "STSZ", "SDTZ", "CSTS", "XYZ ", "BISO", "SDXY", "SDBI",
    "BETA", "SDBE", "CXYZ", "CBET", "CRES", "LRES", "RVAL", "CRYS", "CIF1", "CIF2", "TABL",
    "DIST", "FORD", "FLIM", "PTIT", "AXTD", "FXYZ", "PXYZ", "QPLO", "XSCA", "END "};

constexpr const char* kLayouts[] = {"(8I5)",
                                    "(7f10.0)",
                                    "(a4,6x,i3,5f9.5)",
                                    "(a4,6x,6f10.0)",
                                    "(I5,5F5.0,3F10.0)",
                                    "6(A4,I6,1X)",
                                    "(5E14.7)",
                                    "(a)"};

void ReadWithLayouts(const std::string& data) {
  int i[8];
  float f[8];
  std::string s;
  kaldena::Read(data, kLayouts[0], i[0], i[1], i[2], i[3], i[4], i[5], i[6], i[7]);
  kaldena::Read(data, kLayouts[1], f[0], f[1], f[2], f[3], f[4], f[5], f[6]);
  kaldena::Read(data, kLayouts[2], s, i[0], f[0], f[1], f[2], f[3], f[4]);
  kaldena::Read(data, kLayouts[3], s, f[0], f[1], f[2], f[3], f[4], f[5]);
  kaldena::Read(data, kLayouts[4], i[0], f[0], f[1], f[2], f[3], f[4], f[5], f[6], f[7]);
  kaldena::Read(data, kLayouts[5], s, i[0], s, i[1], s, i[2]);
  kaldena::Read(data, kLayouts[6], f[0], f[1], f[2], f[3], f[4]);
  kaldena::Read(data, kLayouts[7], s);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  const std::string text(reinterpret_cast<const char*>(bytes), size);
  kaldena::SilentReporter reporter;
  kaldena::RecordStore store(reporter);
  std::istringstream in(text);
  store.jReadRecUnit(in);
  std::string data;
  for (const char* key : kKeys) {
    while (store.jFindRec(key, data) == 1) ReadWithLayouts(data);
  }
  store.jCloseRec();

  // The first line as a format, over the rest as data and as values to write.
  const size_t split = text.find('\n');
  const std::string format = text.substr(0, split);
  const std::string rest = split == std::string::npos ? std::string() : text.substr(split + 1);
  float f = 0;
  int n = 0;
  std::string s;
  kaldena::Read(rest, format, f, n, s, f, n);
  kaldena::Format(format, 1.5f, -7, rest, 1e30, 0.0f);

  std::string line = rest;
  kaldena::NormaliseNumericLine(line);
  kaldena::NormaliseNumericField(line, 1);
  return 0;
}
