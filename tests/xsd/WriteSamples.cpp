// Writes the documents that the xsd tests validate against the schema of
// `dossier schema --xsd`, each as the library writes it with the validate flag
// on (so each record passes Check):
//   filled.xml          a dossier with every class and many list items
//   extremes.xml        the texts at the edges of what the writer makes:
//                       nan, inf, -inf, -0.00, a 301-digit number, the
//                       largest whole numbers that read back (element and
//                       attribute), a five-digit year, empty and escaped texts
//   negative-year.xml   a date before the year 0
//   invalid-date.xml    a date that is set but invalid, written empty
//   classes/<Class>.xml one document for each class, its root that class
//
//   edd_xsd_samples OUTDIR PULSES PRIS

#include <cstdio>
#include <cstdlib>
#include <limits>

#include <QDir>
#include <QSet>

#include <EmitterDossierDoc/frame/ClassRegistry.h>
#include <EmitterDossierDoc/frame/Reflection.h>

#include "support/SampleTrees.h"

namespace {

using namespace EMITTERDOSSIERDOC;

bool save(const RECORDKIT::IRKObject& record, const QString& path)
{
    record.SetValidate(true);
    if (record.SaveXml(path))
        return true;
    std::fprintf(stderr, "edd_xsd_samples: cannot write %s\n", qPrintable(path));
    return false;
}

EmitterDossier extremes()
{
    EmitterDossier d = TestSupport::filledDossier(2, 2);
    d.SetConfidence(std::numeric_limits<double>::quiet_NaN());
    d.SetPulseCount(std::numeric_limits<double>::infinity());
    Bearing& bearing = d.GetBearing();
    bearing.SetAzimuth(-std::numeric_limits<double>::infinity());
    bearing.SetAzimuthTol(-0.001);
    bearing.SetElevation(1e300);
    d.SetDetectionTime(QDateTime(QDate(12345, 1, 2), QTime(3, 4, 5, 6), Qt::UTC));
    // The largest whole numbers that read back: in element text the signed
    // conversion's, in an attribute the unsigned one's.
    d.GetELINTParameter().GetScan().SetNumberOfBars(quint64(std::numeric_limits<qint64>::max()));
    d.GetELINTParameter().GetSequence().GetPulseList().GetPulseItem()[0].Setid(std::numeric_limits<quint64>::max());
    d.SetModeName(QStringLiteral(""));
    d.SetEmitterID(QStringLiteral("<&> \"dB\u00b5V\" ]]> \u65e5\u672c"));
    return d;
}

EmitterDossier withDate(const QDateTime& date)
{
    EmitterDossier d = TestSupport::filledDossier(1, 1);
    d.SetDetectionTime(date);
    return d;
}

// The first record of each class in the tree, each saved as a document of its own.
bool saveEachClass(const EmitterDossier& tree, const QDir& dir)
{
    QSet<QString> written;
    bool ok = true;
    Frame::ForEachChecked(tree, [&](const QString&, const Frame::Record& record) {
        const QString name = Frame::ClassName(record.GetClassInfo());
        if (written.contains(name))
            return;
        written.insert(name);
        ok = save(record, dir.filePath(name + QStringLiteral(".xml"))) && ok;
    });
    if (written.size() != Frame::AllClasses().size()) {
        std::fprintf(stderr, "edd_xsd_samples: the tree holds %d of the %d classes\n", int(written.size()),
                     int(Frame::AllClasses().size()));
        return false;
    }
    return ok;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 4) {
        std::fprintf(stderr, "usage: edd_xsd_samples OUTDIR PULSES PRIS\n");
        return 2;
    }
    QDir dir(QString::fromLocal8Bit(argv[1]));
    if (!dir.mkpath(QStringLiteral("classes")))
        return 1;
    const EmitterDossier filled = TestSupport::filledDossier(std::atoi(argv[2]), std::atoi(argv[3]));
    const bool ok = save(filled, dir.filePath(QStringLiteral("filled.xml"))) &&
                    save(extremes(), dir.filePath(QStringLiteral("extremes.xml"))) &&
                    save(withDate(QDateTime(QDate(-5, 1, 2), QTime(3, 4, 5, 6), Qt::UTC)),
                         dir.filePath(QStringLiteral("negative-year.xml"))) &&
                    save(withDate(QDateTime()), dir.filePath(QStringLiteral("invalid-date.xml"))) &&
                    saveEachClass(filled, QDir(dir.filePath(QStringLiteral("classes"))));
    return ok ? 0 : 1;
}
