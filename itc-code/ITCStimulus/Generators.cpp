// The stand-alone generators, one waveform each into the caller's buffer.
#include "Corvantis.h"
#include "ITCInitialize/State.h"
#include "ITCUtilities/Random/LibraryGenerators.h"
#include "ITCWaveforms/Waveforms.h"

namespace corvantis {
namespace {

// The callers' samples are signed; the shapes write the same 16 bits.
uint16_t* SampleBits(int16_t* buffer) { return reinterpret_cast<uint16_t*>(buffer); }

}  // namespace
}  // namespace corvantis

using corvantis::CreateWaveform;
using corvantis::CurrentEpochSettings;
using corvantis::LibraryGenerators;
using corvantis::SampleBits;

void ITCStmCreateSine(int16_t* buffer, const ITCSineParameters* params) {
    CreateWaveform(SampleBits(buffer), *params, CurrentEpochSettings().samplingInterval);
}
void ITCStmCreatePulse(int16_t* buffer, const ITCPulseParameters* params) {
    CreateWaveform(SampleBits(buffer), *params);
}
void ITCStmCreateRamp(int16_t* buffer, const ITCRampParameters* params) {
    CreateWaveform(SampleBits(buffer), *params);
}
void ITCStmCreateFilewave(int16_t* buffer, const ITCFilewaveParameters* params) {
    CreateWaveform(SampleBits(buffer), *params);
}
void ITCStmCreateTrigSeries(int16_t* buffer, const ITCTrigSeriesParameters* params) {
    CreateWaveform(SampleBits(buffer), *params);
}
uint32_t ITCStmCreateSegmentedNoise(int16_t* buffer, const ITCSegmentedNoiseParameters* params) {
    CreateWaveform(SampleBits(buffer), *params, LibraryGenerators());
    return 0;
}
uint32_t ITCStmCreateBinaryNoise(int16_t* buffer, const ITCBinaryNoiseParameters* params) {
    CreateWaveform(SampleBits(buffer), *params, LibraryGenerators());
    return 0;
}
void ITCStmCreateGClamp(int16_t* buffer) {
    corvantis::CreateDynamicClampWaveform(SampleBits(buffer), CurrentEpochSettings().epochPoints);
}
void ITCStmCreateAltVoltage(int16_t* buffer, const ITCAlternateVoltageParameters* params) {
    CreateWaveform(SampleBits(buffer), *params);
}
void ITCStmCreateSpatial(int16_t* buffer, const ITCSpatialStmParameters* params) {
    CreateWaveform(SampleBits(buffer), *params);
}
int32_t ITCStmCreateNoise(uint16_t* buffer, const ITCNoiseParameters* params) {
    return CreateWaveform(buffer, *params, CurrentEpochSettings(), LibraryGenerators());
}
