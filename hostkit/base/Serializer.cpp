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

void Serializer::Fail(const std::string& message) {
    if (!failed_)
        error_ = message;
    failed_ = true;
}

} // namespace Korvane
