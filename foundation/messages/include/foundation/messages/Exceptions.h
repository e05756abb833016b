#pragma once

#include "foundation/messages/MessageIdentifier.h"

#include <boost/exception/exception.hpp>

#include <exception>
#include <string>

namespace Tolvex {

/// Base of the environment's exceptions. `what()` is the English text as UTF-8.
class KX_EXPORT Exception : public std::exception, public boost::exception {
public:
    explicit Exception(std::string text);
    Exception(const Exception&) = default;
    Exception& operator=(const Exception&) = default;
    ~Exception() override;
    [[nodiscard]] const char* what() const noexcept override;

private:
    std::string text;
};

/// A refusal of a whole operation, told to people by a message of the catalogue.
class KX_EXPORT MessageIdentifierException : public Exception {
public:
    explicit MessageIdentifierException(MessageIdentifier message);
    ~MessageIdentifierException() override;
    [[nodiscard]] const MessageIdentifier& GetMessageIdentifier() const noexcept { return message; }

private:
    MessageIdentifier message;
};

/// A failure that one part of the program reports to another and that carries no message of the catalogue.
class KX_EXPORT InternalException : public Exception {
public:
    explicit InternalException(std::string text);
    ~InternalException() override;
};

} // namespace Tolvex
