#include "foundation/arrays/BuiltInTable.h"

#include "foundation/arrays/HostError.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace TolvexArrays {

namespace {

/// The places into which a built-in function puts its outputs; owns what is there.
class OutputSlots {
public:
    explicit OutputSlots(std::size_t count) : slots(std::max<std::size_t>(count, 1), nullptr) {}
    OutputSlots(const OutputSlots&) = delete;
    OutputSlots& operator=(const OutputSlots&) = delete;
    ~OutputSlots() { std::for_each(slots.begin(), slots.end(), DestroyArray); }

    [[nodiscard]] vxArray** Get() noexcept { return slots.data(); }

    [[nodiscard]] std::vector<ArrayOwner> Take() {
        std::vector<ArrayOwner> owners(slots.size());
        for (std::size_t i = 0; i != slots.size(); ++i)
            owners[i].reset(std::exchange(slots[i], nullptr));
        return owners;
    }

private:
    std::vector<vxArray*> slots;
};

} // namespace

void BuiltInTable::Add(std::span<const BuiltIn> builtIns) {
    auto extended = gateways;
    for (const auto& [name, gateway] : builtIns) {
        if (name.empty() || gateway == nullptr || !extended.try_emplace(std::string(name), gateway).second)
            throw std::invalid_argument("a built-in function needs a gateway and a name of its own: " +
                                        std::string(name));
    }
    gateways = std::move(extended);
}

Gateway* BuiltInTable::Find(std::string_view name) const {
    const auto found = gateways.find(name);
    return found == gateways.end() ? nullptr : found->second;
}

std::vector<ArrayOwner> BuiltInTable::Call(std::string_view name, std::size_t outputCount,
                                           std::span<const ArrayOwner> inputs) const {
    Gateway* const gateway = Find(name);
    if (gateway == nullptr)
        RaiseHostError({"TOLVEX:arguments", "unknownFunction", {Tolvex::FromUtf8(name)}});
    std::vector<vxArray*> arguments;
    arguments.reserve(inputs.size());
    for (const ArrayOwner& input : inputs)
        arguments.push_back(input.get());
    OutputSlots outputs(outputCount);
    gateway(static_cast<int>(outputCount), outputs.Get(), static_cast<int>(arguments.size()), arguments.data());
    return outputs.Take();
}

} // namespace TolvexArrays
