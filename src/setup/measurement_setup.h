// The one record of the program: everything the operator can set and everything that was
// computed from it. The main window owns one instance; the configuration file fills and
// saves it.
//
// Physical values are in base units (Hz, dB, dBm, s). Combo box selections are stored as
// their row. There is no lock: the record belongs to the main thread, other threads work on
// a copy made by forOtherThread().
#pragma once

#include "instruments/analyzer.h"
#include "instruments/microwave_generator.h"
#include "instruments/signal_generator.h"
#include "setup/notch_list.h"
#include "setup/signal_data.h"

#include <QString>
#include <QVector>

#include <memory>

// Whether the signal matches the settings. StatusIndicatorWidget uses the same numbers.
enum class DataState : qint32 { Valid = 0, Invalid = 1, Calculating = 2 };

// Rows of combo boxes and radio buttons that the program decides on. A configuration may hold any
// other number: no branch is then taken for it, and it is saved as it came.
enum class NotchOrCarrier : qint32 { Notch = 0, Carrier = 1 };
enum class PhaseLaw : qint32 { Seeded = 0, Clock = 1, Parabolic = 2, Constant = 3 };
enum class SignalSource : qint32 { Internal = 0, MagnitudePhaseFile = 1, IQFiles = 2 };
enum class MeasureMode : qint32 { Continuous = 0, Single = 1 };

struct MeasurementSetup
{
    // All defaults, with two new, empty notch tables.
    MeasurementSetup();

    // A copy that shares no notch rows and no table model with this record, so that another
    // thread may read it while the operator goes on editing.
    MeasurementSetup forOtherThread() const;

    // Number of bins and samples N = 2 to the power (22 - fftLengthIndex).
    quint32 fftLength() const;

    // Distance of two bins in Hz: sampleRate / N.
    double binWidth() const;

    // Stores the state. newDataFlag becomes true exactly when an invalid or calculating
    // signal turns valid, and false in every other case.
    void setDataState(DataState newState);

    // Carrier frequency at the end of the generator chain in Hz; the microwave generator's
    // frequency counts when one is in the chain.
    double effectiveFrequency() const;

    // From settings to samples, in signal/: fills signal and crestFactor. Runs where it is
    // called and takes up to seconds; a source that fails leaves signal.length at 0.
    void calculateSignal();
    // Shaping and transform of a spectrum that the caller owns; reads the setup only.
    void finishSpectrum(SignalData& data) const;

    // Tells the analyzer to measure at notch number measureNotch, in measurement/. Main thread;
    // waits for the analyzer's link and blocks for the traffic. Nothing happens without such a
    // notch. Throws KORemoteException*, with "Analyzer is not initialized!" before the analyzer
    // was ever connected.
    void tuneAnalyzerToNotch() const;
    // Connects and sets all instruments of the chain and puts the analyzer into its channel
    // power measurement, in measurement/preset.h. Blocks; throws KORemoteException*.
    void presetInstruments() const;

    SignalGenerator generator;
    Analyzer analyzer;
    MicrowaveGenerator microwave;
    std::shared_ptr<NotchList> notches;      // shared by copies of the record
    std::shared_ptr<NotchList> spareNotches; // Deliberate: carried along, never filled
    NotchOrCarrier notchOrCarrier = NotchOrCarrier::Notch; // what a row of the table is
    double sampleRate = 100000000.0;                       // Hz
    double nbwSrate = 1.0;                                 // noise bandwidth divided by sample rate
    qint32 fftLengthIndex = 5;       // row of the length combo box, longest first
    quint32 notchCount = 0;          // of "Auto-Calculate"; not the number of rows
    double notchWidth = 10000000.0;  // Hz, of "Auto-Calculate"
    double notchOffset = 10000000.0; // Hz, of "Auto-Calculate"
    double notchDepth = -100.0;      // dB, of "Auto-Calculate"
    PhaseLaw phaseMode = PhaseLaw::Seeded;
    SignalSource customSource = SignalSource::Internal;
    quint32 seed = 1;
    QString phaseMagFile;
    QString iFile;
    QString qFile;
    DataState dataState = DataState::Invalid;
    double crestFactor = 0.0; // dB; exactly 0 means that none is known
    qint32 tcpState = 1;      // 0 a client is connected, 1 none
    quint16 tcpPort = 1000;
    qint32 measureNotch = 0; // number of the notch under measurement from 1; 0 is none
    MeasureMode measureMode = MeasureMode::Single;
    bool sinxCompensation = false;
    bool compensate = false;  // apply compensationTrace
    bool newDataFlag = false; // a valid signal that no client has been told of
    bool traceLoaded = false; // a correction was loaded; only a loaded configuration clears it
    SignalData signal;
    QVector<double> compensationTrace; // dB, one value a bin, frequency order
};
