// Uses the installed library through its umbrella header: builds one value,
// writes it as XML and checks the text, the Qt it runs with, and the version
// of the headers and of the library.
#include <EmitterDossierDoc/EmitterDossierDoc.h>
#include <EmitterDossierDoc/Version.h>

#include <cstdio>
#include <cstring>

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
#ifdef EDD_EXPECTED_VERSION
    // The installed header and library are of the version that was installed.
    if (std::strcmp(EMITTERDOSSIERDOC_VERSION_STRING, EDD_EXPECTED_VERSION) != 0 ||
        std::strcmp(EMITTERDOSSIERDOC::RuntimeVersion(), EDD_EXPECTED_VERSION) != 0) {
        std::fprintf(stderr, "headers of version %s, library of version %s, expected %s\n",
                     EMITTERDOSSIERDOC_VERSION_STRING, EMITTERDOSSIERDOC::RuntimeVersion(), EDD_EXPECTED_VERSION);
        return 1;
    }
#endif
    static_assert(EMITTERDOSSIERDOC_VERSION == EMITTERDOSSIERDOC_VERSION_CHECK(EMITTERDOSSIERDOC_VERSION_MAJOR,
                                                                               EMITTERDOSSIERDOC_VERSION_MINOR,
                                                                               EMITTERDOSSIERDOC_VERSION_PATCH),
                  "the version number is not made of its parts");

    EMITTERDOSSIERDOC::AgeOutTime a;
    a.Setunit(a.NameTounit(QStringLiteral("s")));
    a.SetValue(12.5);

    const QString xml = a.GetXmlString();
    const QString expected = QStringLiteral("<AgeOutTime unit=\"s\">12.50</AgeOutTime>");
    if (!xml.contains(expected)) {
        std::fprintf(stderr, "expected %s in:\n%s\n", qPrintable(expected), qPrintable(xml));
        return 1;
    }
    std::printf("ok: %s with EmitterDossierDoc %s and Qt %s\n", qPrintable(expected),
                EMITTERDOSSIERDOC::RuntimeVersion(), qVersion());
    return 0;
}
