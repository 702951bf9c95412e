#pragma once

// Filled object trees for round trips and benchmarks: every property of every
// class set, every list with items. Doubles carry
// two decimals so that the text forms give them back unchanged.

#include <EmitterDossierDoc/EmitterDossierDoc.h>

namespace TestSupport {

template <class Scalar>
Scalar unitScalar(double value, int unitIndex = 0)
{
    Scalar s;
    s.Setunit(typename Scalar::unit(unitIndex));
    s.SetValue(value);
    return s;
}

template <class Statistic>
Statistic statistic(double mean)
{
    Statistic s;
    s.Setunit(typename Statistic::unit(0));
    s.SetMean(mean);
    s.SetMin(mean - 1.25);
    s.SetMax(mean + 1.25);
    s.SetTol(0.5);
    return s;
}

inline EMITTERDOSSIERDOC::FrequencyItem frequencyItem(quint64 id, double hz)
{
    EMITTERDOSSIERDOC::FrequencyItem item;
    item.Setid(id);
    item.Setunit(EMITTERDOSSIERDOC::FrequencyItem::unit(0));
    item.SetValue(hz);
    return item;
}

inline EMITTERDOSSIERDOC::PRIItem priItem(quint64 id, double ns, int valType = 0)
{
    EMITTERDOSSIERDOC::PRIItem item;
    item.Setid(id);
    item.SetpRIValType(EMITTERDOSSIERDOC::PRIItem::pRIValType(valType));
    item.Setunit(EMITTERDOSSIERDOC::PRIItem::unit(0));
    item.SetValue(ns);
    return item;
}

inline EMITTERDOSSIERDOC::PulseWidthItem pulseWidthItem(quint64 id, double ns)
{
    EMITTERDOSSIERDOC::PulseWidthItem item;
    item.Setid(id);
    item.Setunit(EMITTERDOSSIERDOC::PulseWidthItem::unit(0));
    item.SetValue(ns);
    return item;
}

inline EMITTERDOSSIERDOC::PulseItem pulseItem(quint64 id)
{
    using namespace EMITTERDOSSIERDOC;
    PulseItem item;
    item.Setid(id);
    item.SetPulseWidthID(id % 7);
    item.SetModulationID(id % 3);
    item.SetNormLevel(unitScalar<NormLevel>(-3.5));
    item.SetRiseTime(unitScalar<RiseTime>(12.25 + double(id % 100)));
    item.SetFallTime(unitScalar<FallTime>(20.75));
    item.SetEnvelopeGradient(unitScalar<EnvelopeGradient>(0.05));
    return item;
}

inline EMITTERDOSSIERDOC::ModulationItem modulationItem(quint64 id)
{
    using namespace EMITTERDOSSIERDOC;
    ModulationItem item;
    item.Setid(id);
    item.SetModulationType(item.NameToModulationType(QStringLiteral("PSK2")));
    item.SetOccurrencePercentage(62.5);
    item.SetChipRate(unitScalar<ChipRate>(5000000));
    item.SetChipRateTol(unitScalar<ChipRateTol>(1250.5));
    item.SetModulationDuration(unitScalar<ModulationDuration>(13000));
    item.SetModulationDurationTol(unitScalar<ModulationDurationTol>(20.25));
    item.SetFreqShift(unitScalar<FreqShift>(2500000));
    item.SetFreqShiftTol(unitScalar<FreqShiftTol>(100));
    item.SetTriangleRatio(0.75);
    item.SetTriangleRatioTol(0.05);
    item.SetBandwidth(unitScalar<Bandwidth>(10000000));
    item.SetBandwidthTol(unitScalar<BandwidthTol>(250000));
    item.SetFMOPType(item.NameToFMOPType(QStringLiteral("Low to High")));

    FreqModulation law;
    law.Setname(QStringLiteral("V-law"));
    for (int k = 0; k < 2; ++k) {
        FreqModulationItem segment;
        segment.SetStartFrequency(unitScalar<StartFrequency>(9400000000.25 + k));
        segment.SetFrequencyDeviation(unitScalar<FrequencyDeviation>(k ? -2000000 : 2000000));
        segment.SetDuration(unitScalar<Duration>(6500));
        law.AppendFreqModulationItem(segment);
    }
    item.SetFreqModulation(law);

    CodeSequence codes;
    codes.Setname(QStringLiteral("Barker 13"));
    codes.SetbitSequence(QStringLiteral("1111100110101"));
    for (bool reversed : {false, true}) {
        Code code;
        code.Setreversed(reversed);
        code.Setname(reversed ? QStringLiteral("B13r") : QStringLiteral("B13"));
        code.SetValue(reversed ? QStringLiteral("1010110011111") : QStringLiteral("1111100110101"));
        codes.AppendCode(code);
    }
    item.SetCodeSequence(codes);
    return item;
}

// A parameter block with every property set and `pulses` pulse items,
// `pris` PRI items and a few items in every other list.
inline EMITTERDOSSIERDOC::ELINTParameter filledParameters(int pulses = 3, int pris = 3)
{
    using namespace EMITTERDOSSIERDOC;
    ELINTParameter p;
    p.SetComments(QStringLiteral("Coastal surveillance radar, two modes"));
    p.SetWaveForm(p.NameToWaveForm(QStringLiteral("Pulse")));

    EnhancedDetails& details = p.GetEnhancedDetails();
    details.SetAngularResolution(unitScalar<AngularResolution>(1.5));
    details.SetRangeResolution(unitScalar<RangeResolution>(150));
    details.SetMaxRange(unitScalar<MaxRange>(120000));
    details.SetMaxUnambiguousVelocity(unitScalar<MaxUnambiguousVelocity>(340.25));
    details.SetMinDetectionRange(unitScalar<MinDetectionRange>(500));
    details.SetPulsePaint(12.5);
    details.SetOperationMode(QStringLiteral("Search"));
    details.SetRotorFrequency(unitScalar<RotorFrequency>(0.25));

    Scan& scan = p.GetScan();
    scan.SetScanCycle(statistic<ScanCycle>(4000000000.0));
    scan.SetBeamDuration(statistic<BeamDuration>(45000000.0));
    scan.SetScanPattern(scan.NameToScanPattern(QStringLiteral("Circular + Mech. Elevation")));
    scan.SetBeamPeakPower(unitScalar<BeamPeakPower>(-42.5, 1));
    scan.SetFirstSideLobeLevel(unitScalar<FirstSideLobeLevel>(-23));
    scan.SetNumberOfBars(4);
    scan.SetFrameTime(unitScalar<FrameTime>(1000000));
    scan.SetFlyBackTime(unitScalar<FlyBackTime>(2000));
    scan.SetVerticalScanPeriod(unitScalar<VerticalScanPeriod>(3000));
    scan.SetTimeBetweenBeams(unitScalar<TimeBetweenBeams>(40));
    scan.SetBeamRevisitTime(unitScalar<BeamRevisitTime>(50));
    scan.SetTimeBetweenRFs(unitScalar<TimeBetweenRFs>(60));
    scan.SetRFRevisitTime(unitScalar<RFRevisitTime>(70));

    Antenna& antenna = p.GetAntenna();
    antenna.SetPolarization(antenna.NameToPolarization(QStringLiteral("RHC")));
    antenna.SetBeamWidthHor(unitScalar<BeamWidthHor>(1.25));
    antenna.SetBeamWidthHorTol(unitScalar<BeamWidthHorTol>(0.1));
    antenna.SetBeamWidthVer(unitScalar<BeamWidthVer>(20));
    antenna.SetBeamWidthVerTol(unitScalar<BeamWidthVerTol>(2));
    antenna.SetAntennaDiagramBinNumber(3);
    for (quint64 k = 0; k < 3; ++k) {
        AntennaDiagramVal sample;
        sample.Setunit(AntennaDiagramVal::unit(0));
        sample.Setindex(k);
        sample.SetValue(-3.0 * double(k));
        antenna.GetAntennaDiagram().AppendAntennaDiagramVal(sample);
    }

    FrequencyBehavior& frequency = p.GetFrequencyBehavior();
    frequency.SetCenterFrequency(statistic<CenterFrequency>(9400000000.0));
    frequency.SetFrequencyType(frequency.NameToFrequencyType(QStringLiteral("Pulse-to-Pulse Random")));
    for (quint64 k = 1; k <= 3; ++k)
        frequency.GetFrequencyList().AppendFrequencyItem(frequencyItem(k, 9400000000.0 + 1000000.0 * double(k)));
    for (double spacing : {1000000.0, 2500000.5})
        frequency.GetChannelSpacingList().AppendChannelSpacingItem(unitScalar<ChannelSpacingItem>(spacing));

    PRIBehavior& pri = p.GetPRIBehavior();
    pri.SetPRI(statistic<PRI>(1000));
    pri.SetPRIType(pri.NameToPRIType(QStringLiteral("Stagger")));
    pri.SetPeriodicityPRIID(2);
    QVector<PRIItem>& priItems = pri.GetPRIList().GetPRIItem();
    priItems.reserve(pris);
    for (int k = 0; k < pris; ++k)
        priItems.append(priItem(quint64(k), 1000.25 + double(k % 50), k % 2));

    PulseWidthBehavior& width = p.GetPulseWidthBehavior();
    width.SetPulseWidth(statistic<PulseWidth>(1500));
    width.SetPulseWidthType(width.NameToPulseWidthType(QStringLiteral("Pulse-to-Pulse Agility")));
    for (quint64 k = 0; k < 3; ++k)
        width.GetPulseWidthList().AppendPulseWidthItem(pulseWidthItem(k, 500.5 * double(k + 1)));

    Modulation& modulation = p.GetModulation();
    modulation.SetPrevailingModulation(modulation.NameToPrevailingModulation(QStringLiteral("PSK2")));
    modulation.GetModulationList().AppendModulationItem(modulationItem(0));
    modulation.GetModulationList().AppendModulationItem(modulationItem(1));

    Sequence& sequence = p.GetSequence();
    sequence.SetMasterSequenceBehavior(sequence.NameToMasterSequenceBehavior(QStringLiteral("Switched")));
    for (int type : {1, 2}) {
        MasterSequenceItem master;
        master.Settype(MasterSequenceItem::type(type));
        master.SetValue(quint64(type) * 10);
        sequence.GetMasterSequenceList().AppendMasterSequenceItem(master);
    }
    for (quint64 id = 1; id <= 2; ++id) {
        SequenceItem s;
        s.Setid(id);
        s.SetFrequencyID(id);
        s.SetDeadTime(unitScalar<DeadTime>(250));
        for (quint64 step = 0; step < 2; ++step) {
            ElementItem element;
            element.SetChildID(step);
            element.SetChildType(ElementItem::ChildType(1));
            element.SetNumRepetitions(16);
            element.SetPRIID(step);
            s.GetElementList().AppendElementItem(element);
        }
        sequence.GetSequenceList().AppendSequenceItem(s);
    }
    QVector<PulseItem>& pulseItems = sequence.GetPulseList().GetPulseItem();
    pulseItems.reserve(pulses);
    for (int k = 0; k < pulses; ++k)
        pulseItems.append(pulseItem(quint64(k)));
    return p;
}

inline EMITTERDOSSIERDOC::Filter filledFilter(const QString& name)
{
    using namespace EMITTERDOSSIERDOC;
    Filter f;
    f.SetName(name);
    f.SetComments(QStringLiteral("Pulses of the main beam"));
    TOA& toa = f.GetTOA();
    toa.Setunit(TOA::unit(0));
    toa.SetMin(1000);
    toa.SetMax(250000.5);
    toa.Setinverse(false);
    Level& level = f.GetLevel();
    level.Setunit(Level::unit(1));
    level.SetMin(-70);
    level.SetMax(-20.25);
    level.Setinverse(true);
    f.SetPulseWidth(statistic<PulseWidth>(1500));
    f.SetBandwidth(unitScalar<Bandwidth>(5000000));
    f.SetCenterFrequency(statistic<CenterFrequency>(9400000000.0));
    AOA& aoa = f.GetAOA();
    aoa.Setunit(AOA::unit(0));
    aoa.SetMin(10);
    aoa.SetMax(45.5);
    PRT& prt = f.GetPRT();
    prt.Setunit(PRT::unit(0));
    prt.SetMin(800);
    PeriodicTOA& periodic = f.GetPeriodicTOA();
    periodic.Setunit(PeriodicTOA::unit(0));
    periodic.Setinverse(false);
    periodic.SetOffset(12.5);
    periodic.SetDuration(400);
    periodic.SetPeriod(1000000);
    Modulations& modulations = f.GetModulations();
    modulations.AppendModulation(modulations.NameToModulation(QStringLiteral("LFM")));
    modulations.AppendModulation(modulations.NameToModulation(QStringLiteral("PSK4")));
    f.SetIsPulse(true);
    f.SetIsInvalid(false);
    return f;
}

// A dossier with every property of every class set: the parameter block of
// filledParameters(pulses, pris), files, two filters and a service request.
inline EMITTERDOSSIERDOC::EmitterDossier filledDossier(int pulses = 3, int pris = 3)
{
    using namespace EMITTERDOSSIERDOC;
    EmitterDossier d;
    d.SetName(QStringLiteral("Harbour Lantern"));
    d.SetModeName(QStringLiteral("Long range search"));
    d.SetDatabaseID(QStringLiteral("EDB-0412-A"));
    d.SetConfidence(0.75);
    d.SetAgeOutTime(unitScalar<AgeOutTime>(3600));
    Alternatives& alternatives = d.GetAlternatives();
    for (int k = 0; k < 2; ++k) {
        Alternative a;
        a.SetName(k ? QStringLiteral("Granite Sweep") : QStringLiteral("Tin Drum Mk2"));
        a.SetDatabaseID(k ? QStringLiteral("EDB-1187-C") : QStringLiteral("EDB-0930-B"));
        a.SetConfidence(k ? 0.15 : 0.1);
        alternatives.AppendAlternative(a);
    }
    d.SetPriority(d.NameToPriority(QStringLiteral("High")));
    d.SetEmitterID(QStringLiteral("E-2026-0042"));
    d.SetStatus(d.NameToStatus(QStringLiteral("Active")));
    d.SetPulseCount(48213);
    d.SetDetectionTime(QDateTime(QDate(2026, 11, 2), QTime(14, 5, 33, 250), Qt::UTC));
    d.SetDetectionDuration(unitScalar<DetectionDuration>(1500000000));
    DetectionPosition& position = d.GetDetectionPosition();
    position.SetLatitude(unitScalar<Latitude>(54.32));
    position.SetLongitude(unitScalar<Longitude>(10.14));
    position.SetAltitude(unitScalar<Altitude>(35.5));
    position.SetName(QStringLiteral("Station North"));
    Bearing& bearing = d.GetBearing();
    bearing.Setunit(Bearing::unit(0));
    bearing.SetAzimuth(271.25);
    bearing.SetAzimuthTol(1.5);
    bearing.SetElevation(2.75);
    bearing.SetElevationTol(0.5);
    d.SetELINTParameter(filledParameters(pulses, pris));

    Files& files = d.GetFiles();
    files.SetPDWFileName(QStringLiteral("result.pdw"));
    files.SetIQDWFileName(QStringLiteral("result.iqdw"));
    files.SetIQDWIndexFileName(QStringLiteral("result.iqdw.idx"));
    files.SetRawPDWFileName(QStringLiteral("result.rawpdw"));
    files.SetWBIQFileName(QStringLiteral("result.wbiq"));
    OriginalSource& source = files.GetOriginalSource();
    source.SetPDWFileName(QStringLiteral("source.pdw"));
    source.SetIQDWFileName(QStringLiteral("source.iqdw"));
    source.SetIQDWIndexFileName(QStringLiteral("source.iqdw.idx"));
    source.SetRawPDWFileName(QStringLiteral("source.rawpdw"));
    source.GetWBIQFileName().Settype(WBIQFileName::type(5));
    source.GetWBIQFileName().SetValue(QStringLiteral("source.vita49"));
    Selection& selection = source.GetSelection();
    selection.Setunit(Selection::unit(0));
    selection.SetStart(1000000.25);
    selection.SetStop(2500000.75);
    AdditionalRecording& recording = files.GetAdditionalRecording();
    recording.SetIQDWFileName(QStringLiteral("extra.iqdw"));
    recording.SetWBIQFileName(QStringLiteral("extra.wbiq"));
    for (int k = 1; k <= 2; ++k) {
        Screenshot shot;
        shot.SetFileName(QStringLiteral("screen-%1.png").arg(k));
        shot.SetComment(QStringLiteral("Spectrum at pass %1").arg(k));
        files.GetScreenshotList().AppendScreenshot(shot);
    }

    d.AppendFilter(filledFilter(QStringLiteral("Main beam")));
    d.AppendFilter(filledFilter(QStringLiteral("Side lobes")));
    RADService& service = d.GetRADService();
    service.SetAction(service.NameToAction(QStringLiteral("ToReport")));
    service.SetAdditionalInformation(QStringLiteral("Compare with last month's pass"));
    return d;
}

}  // namespace TestSupport
