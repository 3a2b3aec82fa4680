#include "hostkit/base/Serializer.h"

namespace Korvane {

Serializer::~Serializer() = default;

void Serializer::SetAllocError() {
    Fail("out of memory while reading");
}

void Serializer::SerializeCount(std::int32_t& n, int valuesPerElement) {
    if (Failed()) {
        if (IsReading())
            n = 0;
        return;
    }
    if (!IsReading()) {
        if (n < 0)
            Fail("a negative count (" + std::to_string(n) + ") cannot be written");
        else
            Serialize(n);
        return;
    }
    Serialize(n);
    if (!Failed())
        CanHold(n, valuesPerElement); // refuses a negative count too
    if (Failed())
        n = 0;
}

bool Serializer::FitsIn(std::int64_t elements, int valuesPerElement, std::int64_t bytesLeft,
                        int bytesPerValue) {
    if (elements < 0 || bytesLeft < 0)
        return false;
    if (elements == 0)
        return true;
    const std::int64_t perElement =
        std::int64_t{valuesPerElement < 1 ? 1 : valuesPerElement} * bytesPerValue;
    return elements <= bytesLeft / perElement;
}

bool Serializer::CanAllocate(std::int64_t elements, std::size_t bytesPerElement) {
    if (!IsReading())
        return true;
    if (Failed())
        return false;
    const std::int64_t left = BytesLeft();
    if (elements <= 0 || bytesPerElement == 0 || left < 0)
        return true;
    const auto per = static_cast<std::int64_t>(bytesPerElement);
    // elements * per <= kMaxReadExpansion * left, without overflow.
    if (elements <= (kMaxReadExpansion * left) / per)
        return true;
    Fail("a count of " + std::to_string(elements) + " elements of " + std::to_string(per) +
         " bytes is more memory than " + std::to_string(kMaxReadExpansion) + " times the " +
         std::to_string(left) + " bytes of input left can justify");
    return false;
}

void Serializer::Fail(const std::string& message) {
    if (!failed_)
        error_ = message;
    failed_ = true;
}

} // namespace Korvane
