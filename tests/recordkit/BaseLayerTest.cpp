// The base layer: exceptions that keep their class when raised through the
// base, the logger, dates, and the bool operations that report instead of throwing.

#include <gtest/gtest.h>

#include <QDateTime>

#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;

template <class E>
void expectRaiseThrowsItsClass()
{
    const E exception(QStringLiteral("d"));
    const RKException& base = exception;
    EXPECT_THROW(base.Raise(), E);
}

TEST(Exceptions, RaiseThrowsTheConcreteClass)
{
    expectRaiseThrowsItsClass<OutOfRangeException>();
    expectRaiseThrowsItsClass<IncompleteDefinitionException>();
    expectRaiseThrowsItsClass<InvalidXmlException>();
    expectRaiseThrowsItsClass<BinaryParsingException>();
}

TEST(Exceptions, MessageIsKeptInFull)
{
    const QString text = QString::fromUtf8("Level: Please set unit properly. \xC2\xB5");
    EXPECT_EQ(RKException(text).GetMessage(), text);
    EXPECT_EQ(QString::fromUtf8(RKException(text).what()), text);
}

TEST(Logger, DefaultWritesLevelAndMessageToStandardError)
{
    RECORDKIT::Logger logger;
    testing::internal::CaptureStderr();
    logger.Log(RECORDKIT::ERROR, QStringLiteral("Bearing: Please set unit properly."));
    logger.Log(RECORDKIT::WARNING, QStringLiteral("w"));
    logger.Log(RECORDKIT::LogLevel(3), QStringLiteral("x"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "ERROR: Bearing: Please set unit properly.\nWARNING: w\n3: x\n");
}

TEST(Logger, ObjectsHaveNoLoggerUntilGivenOne)
{
    AgeOutTime a;
    EXPECT_EQ(a.GetLogger(), nullptr);
    auto logger = attachLogger(a);
    EXPECT_EQ(a.GetLogger(), logger);
    a.ResetLogger();
    EXPECT_EQ(a.GetLogger(), nullptr);
    EXPECT_FALSE(a.GetValidate());
    EXPECT_EQ(a.GetObjectType(), RECORDKIT::Undefined);
}

TEST(Converters, DateTimeTextIsUtcWithMilliseconds)
{
    const QDateTime value(QDate(2026, 11, 23), QTime(5, 7, 9, 42), Qt::UTC);
    EXPECT_EQ(Converters::ToString(value), QStringLiteral("2026-11-23T05:07:09,042Z"));
    EXPECT_EQ(Converters::ToDateTime(QStringLiteral("2026-11-23T05:07:09,042Z")), value);
    EXPECT_FALSE(Converters::ToDateTime(QStringLiteral("yesterday")).isValid());
    EXPECT_TRUE(Converters::ToString(QDateTime()).isNull());
}

TEST(BaseValidity, PlainValuesAsTheBaseSeesThem)
{
    AgeOutTime a;
    double d = 1;
    a.SetInvalid(d);
    EXPECT_FALSE(a.IsValid(d));
    QString s = QStringLiteral("x");
    a.SetInvalid(s);
    EXPECT_FALSE(a.IsValid(s));
    EXPECT_TRUE(a.IsValid(QStringLiteral("")));
    int i = 0;
    a.SetInvalid(i);
    EXPECT_FALSE(a.IsValid(i));
    EXPECT_TRUE(a.IsValid(true));
}
