#include "foundation/messages/Exceptions.h"

#include "foundation/messages/Catalogue.h"

#include <utility>

namespace Tolvex {

Exception::Exception(std::string englishText) : text(std::move(englishText)) {}

Exception::~Exception() = default;

const char* Exception::what() const noexcept {
    return text.c_str();
}

MessageIdentifierException::MessageIdentifierException(MessageIdentifier identifier)
    : Exception(GetMessageText(identifier)), message(std::move(identifier)) {}

MessageIdentifierException::~MessageIdentifierException() = default;

InternalException::InternalException(std::string englishText) : Exception(std::move(englishText)) {}

InternalException::~InternalException() = default;

} // namespace Tolvex
