#pragma once

// What every fuzz target does with a record that a reader has let through,
// whole or in part: check it, write it in the four forms, and read each of
// them back, so that the writers meet whatever the readers accept. Crashes,
// sanitizer reports and leaks are the findings; the documented exceptions of
// the virtual readers and writers are not.

#include <cstddef>
#include <cstdint>
#include <memory>

#include <QBuffer>
#include <QByteArray>
#include <QDataStream>

#include <EmitterDossierDoc/EmitterDossierDoc.h>
#include <EmitterDossierDoc/frame/Json.h>

namespace Fuzzing {

using EMITTERDOSSIERDOC::Frame::ClassEntry;
using EMITTERDOSSIERDOC::Frame::Record;

// Reports go nowhere: a fuzzer produces millions of them.
class SilentLogger : public RECORDKIT::Logger {
public:
    void Log(RECORDKIT::LogLevel, const QString&) override {}
};

inline const std::shared_ptr<RECORDKIT::Logger>& silentLogger()
{
    static const std::shared_ptr<RECORDKIT::Logger> logger = std::make_shared<SilentLogger>();
    return logger;
}

inline std::unique_ptr<Record> fresh(const ClassEntry& entry, bool validate)
{
    std::unique_ptr<Record> record(entry.create());
    record->SetValidate(validate);
    record->SetLogger(silentLogger());
    return record;
}

inline void readRaw(Record& record, const QByteArray& bytes)
{
    try {
        EMITTERDOSSIERDOC::Frame::ReadRawForm(record, bytes);
    } catch (const RKException&) {
        // With validation on, an incomplete item refuses to be appended.
    }
}

inline void exercise(const ClassEntry& entry, const Record& record)
{
    record.Check(true);

    QString xml;
    QByteArray tagged;
    try {
        xml = record.GetXmlString();
    } catch (const RKException&) {
        // With validation on, Check refuses an incomplete record before writing.
    }
    try {
        tagged = record.GetBinaryRepresentationAsQByteArray();
    } catch (const RKException&) {
    }
    const QByteArray raw = EMITTERDOSSIERDOC::Frame::RawFormBytes(record);
    const QByteArray json = EMITTERDOSSIERDOC::Frame::ToJson(record);

    const bool validate = record.GetValidate();
    if (!xml.isEmpty())
        fresh(entry, validate)->SetXmlString(xml, true);
    if (!tagged.isEmpty())
        fresh(entry, validate)->SetBinaryRepresentation(tagged);
    readRaw(*fresh(entry, validate), raw);
    EMITTERDOSSIERDOC::Frame::FromJson(*fresh(entry, validate), json);
}

inline const ClassEntry& rootEntry()
{
    return *EMITTERDOSSIERDOC::Frame::FindClass(EMITTERDOSSIERDOC::EmitterDossier::id);
}

// --- One input of each target ---------------------------------------------------------
// The first byte holds the flags (bit 0: validate), the rest is the reader's input.
// `read` reads the input into a fresh record of `entry`, which is then exercised.

template <class Read>
void run(const ClassEntry& entry, const uint8_t* data, size_t size, Read read)
{
    if (size < 1)
        return;
    auto record = fresh(entry, data[0] & 1);
    read(*record, QByteArray::fromRawData(reinterpret_cast<const char*>(data + 1), int(size - 1)), data[0]);
    exercise(entry, *record);
}

// The XML readers of the root: bit 1 asks for a check after reading, bit 2
// reads the bytes as they are (any encoding the document gives) instead of as UTF-8 text.
inline void runXml(const uint8_t* data, size_t size)
{
    run(rootEntry(), data, size, [](Record& record, const QByteArray& bytes, uint8_t flags) {
        if (flags & 4)
            record.SetXmlBytes(bytes, flags & 2);
        else
            record.SetXmlString(QString::fromUtf8(bytes), flags & 2);
    });
}

// The tagged and compressed readers of the root, told apart by the class id in front.
inline void runTagged(const uint8_t* data, size_t size)
{
    run(rootEntry(), data, size, [](Record& record, const QByteArray& bytes, uint8_t) {
        QByteArray copy(bytes.constData(), bytes.size());
        record.SetBinaryRepresentation(copy);
    });
}

// The raw reader of the root; the validate flag acts there only where items are appended.
inline void runRaw(const uint8_t* data, size_t size)
{
    run(rootEntry(), data, size, [](Record& record, const QByteArray& bytes, uint8_t) { readRaw(record, bytes); });
}

// The JSON reader of every class: the document names its class (the root when
// it names none known).
inline void runJson(const uint8_t* data, size_t size)
{
    const QByteArray bytes = size < 1 ? QByteArray()
                                      : QByteArray::fromRawData(reinterpret_cast<const char*>(data + 1), int(size - 1));
    const ClassEntry* named = EMITTERDOSSIERDOC::Frame::FindClass(EMITTERDOSSIERDOC::Frame::JsonRootName(bytes));
    run(named ? *named : rootEntry(), data, size,
        [](Record& record, const QByteArray& json, uint8_t) { EMITTERDOSSIERDOC::Frame::FromJson(record, json); });
}

// The tagged reader of every class: the first byte chooses the class, the
// second holds the flags, the rest is the records of one block, read with
// SetBinary as a parent reads a child.
inline void runAnyClass(const uint8_t* data, size_t size)
{
    if (size < 1)
        return;
    const auto& classes = EMITTERDOSSIERDOC::Frame::AllClasses();
    run(classes.at(data[0] % classes.size()), data + 1, size - 1, [](Record& record, const QByteArray& bytes, uint8_t) {
        QDataStream stream(bytes);
        try {
            record.SetBinary(stream, bytes.size());
        } catch (const RKException&) {
            // The length error, or a refused value with validation on.
        }
    });
}

}  // namespace Fuzzing
