#include "hostkit/base/Serializer.h"

namespace Korvane {

Serializer::~Serializer() = default;

void Serializer::SetAllocError() { Fail("out of memory while reading"); }

void Serializer::Fail(const std::string& message) {
    if (!failed_)
        error_ = message;
    failed_ = true;
}

} // namespace Korvane
