// The skirts outside the noise bandwidth. The notches themselves are operations of SignalData.
#pragma once

struct MeasurementSetup;
struct SignalData;

// Takes 105 dB off everything outside nbwSrate, both boundary bins included. Acts only in notch
// mode and only with nbwSrate below 1. The edges come from the setup's FFT length, whatever the
// length of the signal.
void suppressOutOfBand(SignalData& signal, const MeasurementSetup& setup);
