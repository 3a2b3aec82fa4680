// Both archive formats driven operation by operation. An input is a mode byte (bit 0: text,
// else binary; bit 1: the archive's own check repaired after mutation, so that the mutated
// records get past it), the operation count n as two bytes (little-endian), n bytes of
// operations, then the archive's bytes. Each operation exchanges one thing with the archive as a
// reading routine would (the seeds hold the operations that read each seed's archive through);
// nothing may crash, a failed archive keeps its message, a count let through fits the input, and
// exchanges after a failure change nothing.
//
// An operation is one byte: the low four bits choose the exchange, the high four its argument
// (a group or flag name, a small count, values per element, a multiple of the last count).
#include "fuzz/FuzzSupport.h"
#include "hostkit/base/BinarySerializer.h"
#include "hostkit/base/TextSerializer.h"

#include <cstdint>
#include <memory>
#include <vector>

using namespace Korvane;

namespace {

const char* const kNames[] = {"Data", "Color", "Wavelengths", "EquiDistant", ""};

template <class Archive>
void Drive(Archive& a, const std::uint8_t* ops, std::size_t count) {
    std::vector<double> values;
    std::int32_t lastCount = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint8_t op = ops[i];
        const char* name = kNames[(op >> 4) % 5];
        const bool failedBefore = a.Failed();
        double d = 1.5;
        std::int32_t i32 = 7;
        std::int64_t i64 = 9;
        switch (op & 0xF) {
        case 0:
            a.OpenGroup(name);
            break;
        case 1:
            a.CloseGroup();
            break;
        case 2:
            a.Serialize(d);
            break;
        case 3:
            a.Serialize(i32);
            break;
        case 4:
            a.Serialize(i64);
            break;
        case 5: {
            values.assign(static_cast<std::size_t>(op >> 4), 2.5);
            a.Serialize(values.data(), static_cast<int>(values.size()));
            break;
        }
        case 6: {
            bool flag = true;
            a.Serialize(name, flag, false);
            break;
        }
        case 7: {
            std::string text = "x";
            a.Serialize(text);
            break;
        }
        case 8: {
            std::int32_t n = 0;
            a.SerializeCount(n, (op >> 4) + 1);
            if (n < 0 || (!a.Failed() && !a.CanHold(n, (op >> 4) + 1)))
                Fuzz::Finding("SerializeCount let through a count the input cannot hold");
            lastCount = n;
            break;
        }
        case 9:
            a.CanAllocate(op >> 4, 64);
            break;
        case 10: {
            // An array sized by the last count, as a reader allocates after SerializeCount.
            const std::int64_t n = std::int64_t{lastCount} * ((op >> 4) + 1);
            values.assign(static_cast<std::size_t>(n), 0.0);
            a.Serialize(values.data(), static_cast<int>(n));
            break;
        }
        default:
            a.Finish();
            break;
        }
        if (a.Failed() && a.Error().empty())
            Fuzz::Finding("a failed archive without a message");
        if (failedBefore && (op & 0xF) >= 2 && (op & 0xF) <= 4 &&
            (d != 1.5 || (i32 != 0 && i32 != 7) || (i64 != 0 && i64 != 9)))
            Fuzz::Finding("an exchange after failure changed a value");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 3)
        return 0;
    Fuzz::Setup();
    const std::size_t wanted = data[1] | (std::size_t{data[2]} << 8);
    const std::size_t n = wanted < size - 3 ? wanted : size - 3;
    const std::uint8_t* ops = data + 3;
    std::string bytes(reinterpret_cast<const char*>(data) + 3 + n, size - 3 - n);
    if (data[0] & 2)
        Fuzz::RepairFrame(bytes);
    const Fuzz::Balance balance;
    if (data[0] & 1) {
        TextSerializer a(std::move(bytes));
        Drive(a, ops, n);
    } else {
        BinarySerializer a(std::move(bytes));
        Drive(a, ops, n);
    }
    balance.Check();
    return 0;
}
