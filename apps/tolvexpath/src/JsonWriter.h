#pragma once

#include "foundation/text/ustring.h"

#include <cstdint>
#include <string_view>

namespace TolvexPath {

class Output;

/// Writes JSON text (RFC 8259) piece by piece; sets the commas itself. The text is valid UTF-8 whatever the names hold:
/// a surrogate without its partner, such as stands for a byte that is no UTF-8, is written as an escape ("\udcff").
class JsonWriter {
public:
    explicit JsonWriter(Output& output) noexcept : output(output) {}

    void BeginObject() { Begin('{'); }
    void EndObject() { End('}'); }
    void BeginArray() { Begin('['); }
    void EndArray() { End(']'); }

    /// REQUIRES: inside an object; one value has to follow.
    void Key(std::string_view asciiName);

    void String(Tolvex::ustring_view text);
    void Number(std::uint64_t number);
    /// In as few digits as tell it apart; null when it is infinite or no number.
    void Real(double number);
    void Boolean(bool value);
    void Null();

private:
    void Begin(char bracket);
    void End(char bracket);
    void Separate();

    Output& output;
    bool needsComma = false;
};

} // namespace TolvexPath
