#include "tools/fourier_options.h"

#include "store/record_catalogue.h"
#include "util/column_format.h"

namespace kaldena {

namespace {

int ScanLevel(int level) { return level < 0 || level > 999 ? 0 : level; }

// A text record's first `width` characters, blank padded.
std::string Field(const std::string& data, std::size_t width) {
  std::string text = data.substr(0, std::min(width, data.size()));
  text.resize(width, ' ');
  return text;
}

}  // namespace

FourierOptions ReadFourierOptions(RecordStore& store) {
  FourierOptions options;
  std::string data;
  if (store.jFindRec("FORD", data) == 1) {
    FourierOptions read;
    if (Read(data, "(3I5,4F10.0)", read.mapType, read.positiveLevel, read.negativeLevel,
             read.f000, read.maxSinThetaOverLambda, read.minSinThetaOverLambda,
             read.sigmaCutOff) == ReadStatus::kOk) {
      options.mapType = read.mapType;
      options.positiveLevel = ScanLevel(read.positiveLevel);
      options.negativeLevel = ScanLevel(read.negativeLevel);
      options.f000 = read.f000;
      options.maxSinThetaOverLambda = read.maxSinThetaOverLambda;
      options.minSinThetaOverLambda = read.minSinThetaOverLambda;
      options.sigmaCutOff = read.sigmaCutOff;
    }
  }
  if (store.jFindRec("FLIM", data) == 1) {
    std::array<float, 6> v{};
    if (Read(data, "(6F10.0)", v[0], v[1], v[2], v[3], v[4], v[5]) == ReadStatus::kOk) {
      options.limits = v;
    }
  }
  if (store.jFindRec("PTIT", data) == 1) options.plotTitle = Field(data, 12);
  if (store.jFindRec("TITL", data) == 1) options.title = Field(data, 12);
  return options;
}

Record FourierOrderRecord(const FourierOptions& o) {
  const FormatArg args[] = {o.mapType, o.positiveLevel, o.negativeLevel, o.f000,
                            o.maxSinThetaOverLambda, o.minSinThetaOverLambda, o.sigmaCutOff};
  return LayoutRecord("('FORD      ',3i5,f10.0,3f10.2)", args);
}

Record FourierLimitsRecord(const FourierOptions& o) {
  const auto& l = o.limits;
  const FormatArg args[] = {l[0], l[1], l[2], l[3], l[4], l[5]};
  return LayoutRecord("('FLIM      ',6f10.2)", args);
}

Record PlotTitleRecord(const FourierOptions& o) { return TextRecord("PTIT", o.plotTitle); }

}  // namespace kaldena
