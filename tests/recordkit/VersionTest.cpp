// The version of the headers and of the library: the install's consumer
// checks both against the project's version; here, how the number packs its
// parts, and that the library's text is its own.

#include <dlfcn.h>

#include <gtest/gtest.h>

#include <QString>

#include <EmitterDossierDoc/Version.h>

TEST(Version, NumberPacksThePartsAsQtVersionDoes)
{
    EXPECT_EQ(EMITTERDOSSIERDOC_VERSION_CHECK(1, 2, 3), 0x010203);
    EXPECT_LT(EMITTERDOSSIERDOC_VERSION_CHECK(0, 255, 255), EMITTERDOSSIERDOC_VERSION_CHECK(1, 0, 0));
    EXPECT_STREQ(EMITTERDOSSIERDOC_VERSION_STRING, EDD_PROJECT_VERSION);
}

// The text lives in the shared library, not in this program: a program built
// against other headers still gets the library's own version.
TEST(Version, RuntimeVersionIsTheLibrarysOwn)
{
    const char* runtime = EMITTERDOSSIERDOC::RuntimeVersion();
    EXPECT_STREQ(runtime, EDD_PROJECT_VERSION);
    Dl_info where{};
    ASSERT_NE(dladdr(runtime, &where), 0);
    EXPECT_TRUE(QString::fromLocal8Bit(where.dli_fname).contains(QLatin1String("/libEmitterDossierDoc")))
        << where.dli_fname;
}
