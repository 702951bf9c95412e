// The version header and the library's own version agree with the project's
// version, which the build passes as EDD_PROJECT_VERSION.

#include <dlfcn.h>

#include <gtest/gtest.h>

#include <QString>
#include <QStringList>

#include <EmitterDossierDoc/Version.h>

TEST(Version, MacrosAreTheProjectVersion)
{
    const QStringList parts = QStringLiteral(EDD_PROJECT_VERSION).split(QLatin1Char('.'));
    ASSERT_EQ(parts.size(), 3);
    EXPECT_EQ(EMITTERDOSSIERDOC_VERSION_MAJOR, parts.at(0).toInt());
    EXPECT_EQ(EMITTERDOSSIERDOC_VERSION_MINOR, parts.at(1).toInt());
    EXPECT_EQ(EMITTERDOSSIERDOC_VERSION_PATCH, parts.at(2).toInt());
    EXPECT_STREQ(EMITTERDOSSIERDOC_VERSION_STRING, EDD_PROJECT_VERSION);
}

TEST(Version, NumberPacksThePartsAsQtVersionDoes)
{
    EXPECT_EQ(EMITTERDOSSIERDOC_VERSION_CHECK(1, 2, 3), 0x010203);
    EXPECT_EQ(EMITTERDOSSIERDOC_VERSION_CHECK(0, 1, 0), 0x000100);
    EXPECT_EQ(EMITTERDOSSIERDOC_VERSION, (EMITTERDOSSIERDOC_VERSION_MAJOR << 16) |
                                             (EMITTERDOSSIERDOC_VERSION_MINOR << 8) | EMITTERDOSSIERDOC_VERSION_PATCH);
    // Later versions compare greater, the minor and patch parts included.
    EXPECT_LT(EMITTERDOSSIERDOC_VERSION,
              EMITTERDOSSIERDOC_VERSION_CHECK(EMITTERDOSSIERDOC_VERSION_MAJOR, EMITTERDOSSIERDOC_VERSION_MINOR,
                                              EMITTERDOSSIERDOC_VERSION_PATCH + 1));
    EXPECT_LT(EMITTERDOSSIERDOC_VERSION_CHECK(0, 255, 255), EMITTERDOSSIERDOC_VERSION_CHECK(1, 0, 0));
}

// The number is usable where Qt's is: in the preprocessor.
#if EMITTERDOSSIERDOC_VERSION != EMITTERDOSSIERDOC_VERSION_CHECK(EMITTERDOSSIERDOC_VERSION_MAJOR, \
                                                                 EMITTERDOSSIERDOC_VERSION_MINOR, \
                                                                 EMITTERDOSSIERDOC_VERSION_PATCH)
#error "EMITTERDOSSIERDOC_VERSION is not usable in #if"
#endif

TEST(Version, RuntimeVersionIsTheLibrarysOwn)
{
    const char* runtime = EMITTERDOSSIERDOC::RuntimeVersion();
    ASSERT_NE(runtime, nullptr);
    EXPECT_STREQ(runtime, EDD_PROJECT_VERSION);
    // The text lives in the shared library, not in this program: a program
    // built against other headers still gets the library's own version.
    Dl_info where{};
    ASSERT_NE(dladdr(runtime, &where), 0);
    ASSERT_NE(where.dli_fname, nullptr);
    EXPECT_TRUE(QString::fromLocal8Bit(where.dli_fname).contains(QLatin1String("/libEmitterDossierDoc")))
        << where.dli_fname;
}
