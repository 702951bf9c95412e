#pragma once

#include <exception>

#include <QByteArray>
#include <QString>

#include <EmitterDossierDoc/edd_export.h>

/// The base of the faults that records report.
///
/// Each carries one message; Raise() throws the object as its own dynamic
/// type, so that code holding a reference to the base still raises the
/// concrete class that the caller catches.
class EDD_EXPORT RKException : public std::exception {
public:
    /// A fault with its message.
    explicit RKException(const QString& message);
    ~RKException() override;

    /// The message, such as "Bearing: Please set unit properly.".
    const QString& GetMessage() const;
    /// The message in UTF-8.
    const char* what() const noexcept override;
    /// Throws this object as its own dynamic type.
    [[noreturn]] virtual void Raise() const;

private:
    QString m_message;
    QByteArray m_what;  // UTF-8 of the message, kept for what()
};

/// A value not set or out of range: raised by Check and the setters.
class EDD_EXPORT OutOfRangeException : public RKException {
public:
    /// A fault with its message.
    explicit OutOfRangeException(const QString& message);
    [[noreturn]] void Raise() const override;
};

/// A mandatory child missing when writing, or an incomplete item offered to a list.
class EDD_EXPORT IncompleteDefinitionException : public RKException {
public:
    /// A fault with its message.
    explicit IncompleteDefinitionException(const QString& message);
    [[noreturn]] void Raise() const override;
};

/// XML that is not understood: an unknown element of the root, an empty boolean.
class EDD_EXPORT InvalidXmlException : public RKException {
public:
    /// A fault with its message.
    explicit InvalidXmlException(const QString& message);
    [[noreturn]] void Raise() const override;
};

/// A binary form whose lengths or framing do not add up.
class EDD_EXPORT BinaryParsingException : public RKException {
public:
    /// A fault with its message.
    explicit BinaryParsingException(const QString& message);
    [[noreturn]] void Raise() const override;
};
