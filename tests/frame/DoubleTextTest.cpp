// The two-decimal text of doubles must be exactly what QString::arg(v, 0, 'f', 2)
// gives, ties and signs included, in the XML and the tagged form alike.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include <QtEndian>

#include <EmitterDossierDoc/EmitterDossierDoc.h>

using namespace EMITTERDOSSIERDOC;

namespace {

QString qtText(double value) { return QStringLiteral("%1").arg(value, 0, 'f', 2); }

// The text of Mean as the tagged writer puts it out.
QByteArray taggedText(double value)
{
    BeamDuration b;
    b.SetMean(value);
    const QByteArray bytes = b.GetBinaryRepresentationAsQByteArray();
    // The record is tag, length, byte count, bytes.
    const QByteArray meanTag = QByteArray::fromHex("e31b2fb9");
    const int at = bytes.lastIndexOf(meanTag);
    const int n = qFromBigEndian<qint32>(bytes.constData() + at + 8);
    return bytes.mid(at + 12, n);
}

QString xmlText(double value)
{
    BeamDuration b;
    b.SetMean(value);
    const QString xml = b.GetXmlString();
    const int start = xml.indexOf(QStringLiteral("<Mean>")) + 6;
    return xml.mid(start, xml.indexOf(QStringLiteral("</Mean>")) - start);
}

}  // namespace

// Ties away from zero, signs, values too small for two decimals, and values
// beyond the fast range of the writer.
TEST(DoubleText, EdgeValuesKeepQtsText)
{
    const double max = std::numeric_limits<double>::max(), inf = std::numeric_limits<double>::infinity();
    for (double v : {0.125,
                     -0.125,
                     0.375,
                     2.5e-3,
                     9375000000.125,
                     1e15 + 0.125,
                     0.005,
                     -0.005,
                     0.004,
                     -0.004,
                     -0.0,
                     -1.0,
                     1e10,
                     std::numeric_limits<double>::denorm_min(),
                     4e16,
                     -4e16,
                     1.5e17,
                     1e300,
                     max,
                     inf,
                     -inf,
                     std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(xmlText(v), qtText(v)) << v;
        EXPECT_EQ(QString::fromUtf8(taggedText(v)), qtText(v)) << v;
    }
    EXPECT_EQ(xmlText(9375000000.125), QStringLiteral("9375000000.13"));
    EXPECT_EQ(xmlText(-0.004), QStringLiteral("-0.00"));
}

TEST(DoubleText, RandomValuesMatchQt)
{
    std::mt19937_64 random(20261123);
    std::uniform_real_distribution<double> wide(-1e9, 1e9);
    for (int i = 0; i < 20000; ++i) {
        const double plain = wide(random);
        const double cents = double(qint64(random() % 2000000000000LL) - 1000000000000LL) / 1000.0;
        const double scaled = std::ldexp(double(random() >> 11), int(random() % 100) - 70);
        for (double v : {plain, cents, cents / 8, scaled})
            ASSERT_EQ(QString::fromUtf8(taggedText(v)), qtText(v)) << v;
    }
}
