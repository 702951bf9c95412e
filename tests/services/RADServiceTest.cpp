// The service request that travels with a record: an optional action and an
// optional free text, nothing of it mandatory.

#include <gtest/gtest.h>

#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;

namespace {

}  // namespace

TEST(ServiceRequest, AnEmptyRequestIsCompleteAndWritesAnEmptyElement)
{
    const RADService fresh;
    EXPECT_TRUE(fresh.HasData());
    EXPECT_FALSE(fresh.AnyData());
    EXPECT_FALSE(fresh.IsInitialized());

    RADService r;
    r.SetValidate(true);
    EXPECT_NO_THROW(r.Check());
    EXPECT_EQ(r.GetXmlString(), document("<RADService/>"));
    EXPECT_EQ(r.GetBinaryRepresentationAsQByteArray(), hex("aab19fc5 00000000"));
    EXPECT_EQ(raw(r), hex("00"));
    expectRaised<OutOfRangeException>([&] { r.SetAction(RADService::Action(2)); },
                                      QStringLiteral("enum is not valid (classname=RADService,membername=m_action)"));
    expectRaised<OutOfRangeException>([&] { r.SetAdditionalInformation(QString()); },
                                      QStringLiteral(
                                          "RADService: Please set AdditionalInformation properly (origin: Setter)."));
    EXPECT_FALSE(r.IsActionSet());
    EXPECT_FALSE(r.IsAdditionalInformationSet());
}

TEST(ServiceRequest, FilledRequestLayoutsAndRoundTrip)
{
    RADService r;
    r.SetAction(r.NameToAction(QStringLiteral("ToReport")));
    r.SetAdditionalInformation(QStringLiteral("x"));
    EXPECT_EQ(r.GetAction(), 1);
    r.SetValidate(true);
    EXPECT_EQ(r.GetXmlString(), document("<RADService>\n  <Action>ToReport</Action>\n"
                                         "  <AdditionalInformation>x</AdditionalInformation>\n</RADService>"));
    EXPECT_EQ(tagged(r, 0x89cedbbf), hex("89cedbbf 00000021 2d922498 0000000c 00000008 546f5265706f7274"
                                         "a39ee032 00000005 00000001 78"));
    EXPECT_EQ(raw(r), hex("03 01 00000002 0078"));

    RADService fromXml;
    ASSERT_TRUE(fromXml.SetXmlString(r.GetXmlString(), false));
    EXPECT_TRUE(fromXml == r);
    RADService fromTagged;
    QByteArray bytes = r.GetBinaryRepresentationAsQByteArray();
    ASSERT_TRUE(fromTagged.SetBinaryRepresentation(bytes));
    EXPECT_TRUE(fromTagged == r);
    RADService fromRaw;
    readRaw(fromRaw, raw(r));
    EXPECT_TRUE(fromRaw == r);

    RADService onlyText;
    onlyText.SetAdditionalInformation(QStringLiteral("x"));
    EXPECT_EQ(raw(onlyText), hex("02 00000002 0078"));
    EXPECT_FALSE(onlyText == r);
}

TEST(ServiceRequest, AnUnknownActionIsKeptInvalidWithValidationOff)
{
    const QString xml = QStringLiteral("<RADService><Action>ToArchive</Action></RADService>");
    RADService lenient;
    auto logger = attachLogger(lenient);
    ASSERT_TRUE(lenient.SetXmlString(xml, false));
    EXPECT_TRUE(lenient.IsActionSet());
    EXPECT_EQ(lenient.GetAction(), 0xFF);
    EXPECT_TRUE(lenient.GetActionAsString().isNull());
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::WARNING);
    EXPECT_EQ(logger->entries[0].message,
              QStringLiteral("enum is not valid (classname=RADService,membername=m_action)"));
    expectRaised<OutOfRangeException>([&] { lenient.Check(); },
                                      QStringLiteral("RADService: Please set Action properly."));
    EXPECT_EQ(raw(lenient), hex("01 ff"));

    RADService strict;
    strict.SetValidate(true);
    EXPECT_FALSE(strict.SetXmlString(xml, false));
    EXPECT_FALSE(strict.IsActionSet());
}
