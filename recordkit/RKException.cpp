#include <EmitterDossierDoc/recordkit/RKException.h>

RKException::RKException(const QString& message) : m_message(message), m_what(message.toUtf8()) {}
RKException::~RKException() = default;

const QString& RKException::GetMessage() const { return m_message; }
const char* RKException::what() const noexcept { return m_what.constData(); }
void RKException::Raise() const { throw *this; }

OutOfRangeException::OutOfRangeException(const QString& message) : RKException(message) {}
void OutOfRangeException::Raise() const { throw *this; }

IncompleteDefinitionException::IncompleteDefinitionException(const QString& message) : RKException(message) {}
void IncompleteDefinitionException::Raise() const { throw *this; }

InvalidXmlException::InvalidXmlException(const QString& message) : RKException(message) {}
void InvalidXmlException::Raise() const { throw *this; }

BinaryParsingException::BinaryParsingException(const QString& message) : RKException(message) {}
void BinaryParsingException::Raise() const { throw *this; }
