// Uses the installed library through its umbrella header: builds one value,
// writes it as XML and checks the text.
#include <EmitterDossierDoc/EmitterDossierDoc.h>

#include <cstdio>

int main()
{
    EMITTERDOSSIERDOC::AgeOutTime a;
    a.Setunit(a.NameTounit(QStringLiteral("s")));
    a.SetValue(12.5);

    const QString xml = a.GetXmlString();
    const QString expected = QStringLiteral("<AgeOutTime unit=\"s\">12.50</AgeOutTime>");
    if (!xml.contains(expected)) {
        std::fprintf(stderr, "expected %s in:\n%s\n", qPrintable(expected), qPrintable(xml));
        return 1;
    }
    std::printf("ok: %s\n", qPrintable(expected));
    return 0;
}
