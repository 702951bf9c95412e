#pragma once

#include <exception>

#include <QByteArray>
#include <QString>

#include <EmitterDossierDoc/edd_export.h>

// The faults that records report. Each carries one message; Raise() throws the
// object as its own dynamic type, so that code holding a reference to the base
// still raises the concrete class that the caller catches.
class EDD_EXPORT RKException : public std::exception {
public:
    explicit RKException(const QString& message);
    ~RKException() override;

    const QString& GetMessage() const;
    const char* what() const noexcept override;
    [[noreturn]] virtual void Raise() const;

private:
    QString m_message;
    QByteArray m_what;  // UTF-8 of the message, kept for what()
};

// A value not set or out of range.
class EDD_EXPORT OutOfRangeException : public RKException {
public:
    explicit OutOfRangeException(const QString& message);
    [[noreturn]] void Raise() const override;
};

// A mandatory child missing, or an incomplete item offered to a list.
class EDD_EXPORT IncompleteDefinitionException : public RKException {
public:
    explicit IncompleteDefinitionException(const QString& message);
    [[noreturn]] void Raise() const override;
};

// XML that is not understood.
class EDD_EXPORT InvalidXmlException : public RKException {
public:
    explicit InvalidXmlException(const QString& message);
    [[noreturn]] void Raise() const override;
};

// A binary form whose lengths or framing do not add up.
class EDD_EXPORT BinaryParsingException : public RKException {
public:
    explicit BinaryParsingException(const QString& message);
    [[noreturn]] void Raise() const override;
};
