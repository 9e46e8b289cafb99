// What the program computes, subject by subject; the order matters, the generators keep state.
#pragma once

#include "Report.h"

namespace exactness {

void ReportMaths(Report& report);
void ReportRandomNumbers(Report& report);
void ReportTransforms(Report& report);
void ReportWaveforms(Report& report);
void ReportNoise(Report& report);
void ReportSums(Report& report);
void ReportCodecs(Report& report);
void ReportDataFile(Report& report);

}  // namespace exactness
