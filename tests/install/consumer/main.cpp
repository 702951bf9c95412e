// Uses the installed library through its umbrella header: builds one value,
// writes it as XML and checks the text, and the Qt it runs with.
#include <EmitterDossierDoc/EmitterDossierDoc.h>

#include <cstdio>

int main()
{
#ifdef EDD_EXPECTED_QT_MAJOR
    // The package brought the Qt that the library was built with.
    const int runningMajor = QByteArray(qVersion()).split('.').value(0).toInt();
    if (QT_VERSION_MAJOR != EDD_EXPECTED_QT_MAJOR || runningMajor != EDD_EXPECTED_QT_MAJOR) {
        std::fprintf(stderr, "built with Qt %d, running on Qt %s, expected Qt %d\n", QT_VERSION_MAJOR, qVersion(),
                     EDD_EXPECTED_QT_MAJOR);
        return 1;
    }
#endif
    EMITTERDOSSIERDOC::AgeOutTime a;
    a.Setunit(a.NameTounit(QStringLiteral("s")));
    a.SetValue(12.5);

    const QString xml = a.GetXmlString();
    const QString expected = QStringLiteral("<AgeOutTime unit=\"s\">12.50</AgeOutTime>");
    if (!xml.contains(expected)) {
        std::fprintf(stderr, "expected %s in:\n%s\n", qPrintable(expected), qPrintable(xml));
        return 1;
    }
    std::printf("ok: %s with Qt %s\n", qPrintable(expected), qVersion());
    return 0;
}
