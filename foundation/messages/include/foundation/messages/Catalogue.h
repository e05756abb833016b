#pragma once

#include "foundation/messages/KxLocale.h"
#include "foundation/messages/MessageIdentifier.h"

namespace Tolvex {

/// The English text of a message as UTF-8, its arguments put in their places. A message that the catalogue does not
/// know is told by its full name and its arguments, so that nothing is lost. Safe from any thread.
[[nodiscard]] KX_EXPORT std::string GetMessageText(const MessageIdentifier& message);

/// The text of a message in the language of a locale, in English when the catalogue does not speak that language (this
/// one speaks no other); otherwise as above.
[[nodiscard]] KX_EXPORT ustring GetLocalizedText(const MessageIdentifier& message, const KxLocale& locale);

} // namespace Tolvex
