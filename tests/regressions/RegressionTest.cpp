// Inputs on which the fuzz targets once found a fault, run again through the
// same steps: read, check, write in every form, read back. Each folder holds
// the inputs of one target, first byte included (what the raw dates among
// them must read as is in RawDateTest).

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include "fuzz/FuzzCommon.h"
#include "support/TestSupport.h"

namespace {

void runAll(const char* folder, void (*run)(const uint8_t*, size_t), int& count)
{
    const QDir dir(QStringLiteral(EDD_REGRESSIONS_DIR "/") + QLatin1String(folder));
    for (const QString& name : dir.entryList(QDir::Files)) {
        QFile file(dir.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
        const QByteArray bytes = file.readAll();
        SCOPED_TRACE(name.toStdString());
        run(reinterpret_cast<const uint8_t*>(bytes.constData()), size_t(bytes.size()));
        ++count;
    }
}

}  // namespace

TEST(Regressions, FoundInputsPassEveryStep)
{
    int count = 0;
    runAll("xml", Fuzzing::runXml, count);
    runAll("tagged", Fuzzing::runTagged, count);
    runAll("raw", Fuzzing::runRaw, count);
    runAll("any", Fuzzing::runAnyClass, count);
    runAll("json", Fuzzing::runJson, count);
    EXPECT_GT(count, 0);
}

// A hostile kilobyte: counts that claim two thousand million items reserve no
// more than the bytes behind them can hold.
TEST(Limits, ClaimedCountsReserveOnlyWhatTheInputCanHold)
{
    using namespace EMITTERDOSSIERDOC;
    const QByteArray filler(1018, '\0');

    Alternatives list;
    TestSupport::readRaw(list, QByteArray::fromHex("017fffffff") + filler);
    EXPECT_LE(qAsConst(list).GetAlternative().capacity(), 1024);
    Modulations set;
    TestSupport::readRaw(set, QByteArray::fromHex("017fffffff") + filler);
    EXPECT_LE(qAsConst(set).GetModulation().capacity(), 1024);

    // In the tagged form the count is measured against the block first.
    Alternatives tagged;
    EXPECT_THROW(TestSupport::readTagged(tagged, QByteArray::fromHex("e341690100000404 7fffffff") + filler, 1036),
                 BinaryParsingException);
    EXPECT_EQ(static_cast<const Alternatives&>(tagged).GetAlternative().capacity(), 0);
}
