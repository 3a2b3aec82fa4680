// Serializer: one routine reads and writes an object; the archive decides the direction.
//
// Two archives implement it: BinarySerializer (compact, every double bit for bit) and
// TextSerializer (readable; every double, NaN payloads, infinities and -0.0 included, reads back
// bit for bit). Reading is safe on hostile input: a wrong magic or version, truncation, a group
// name that does not match, unbalanced groups or a count larger than the rest of the input can
// hold put the archive into a failed state with a message naming the problem and where; after
// that every exchange is a no-op that leaves values alone (counts read as 0), nothing crashes,
// and no read allocates more than the input can justify.
#pragma once

#include "hostkit/HostExport.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace Korvane {

class KOR_HOST_API Serializer {
public:
    virtual ~Serializer();

    virtual bool IsReading() const = 0;

    // Opens a named group; reading checks the name. 0 or -1 (and the archive fails).
    virtual int OpenGroup(const char* name) = 0;
    // Closes the innermost group; reading checks that nothing of the group is left. 0 or -1.
    virtual int CloseGroup() = 0;

    virtual void Serialize(double& v) = 0;
    // Integers. Reading one where the innermost group closes gives 0 and consumes nothing, without
    // failing: the writer of an empty holder leaves its counts out, and the reader asks anyway.
    virtual void Serialize(std::int32_t& v) = 0;
    virtual void Serialize(std::int64_t& v) = 0;
    // An array of n doubles in one exchange; n = 0 exchanges nothing.
    virtual void Serialize(double* values, int n) = 0;
    // A named bool; when reading an archive that lacks the name, `flag` becomes `defaultValue`.
    virtual void Serialize(const char* name, bool& flag, bool defaultValue) = 0;
    // A string (type identifiers of plug files).
    virtual void Serialize(std::string& text) = 0;

    // An element count that the caller then allocates for, each element `valuesPerElement`
    // doubles. Reading refuses (fails, count 0) a negative count or one the rest of the input
    // cannot hold, so a damaged count never reaches an allocation. The count is stored as an
    // int32 exchange followed by CanHold, so either way of reading it finds the same record.
    virtual void SerializeCount(std::int32_t& n, int valuesPerElement);
    // Reading: whether the rest of the input can still hold `elements` elements of
    // `valuesPerElement` doubles; when not (a negative count included), the archive fails.
    // Writing: always true.
    virtual bool CanHold(std::int64_t elements, int valuesPerElement) = 0;

    // Reading: whether `elements` objects of `bytesPerElement` bytes each may be allocated for
    // what is read next. No read allocates more than kMaxReadExpansion times the bytes of input
    // left; a count above that fails the archive with a message. The factor is the most that a
    // file as the writer makes it can need: an array of empty spectral colours, 64 bytes of
    // memory for each element that takes 4 or 5 bytes of input. Writing: always true.
    bool CanAllocate(std::int64_t elements, std::size_t bytesPerElement);
    static constexpr std::int64_t kMaxReadExpansion = 16;

    // Marks the archive failed for lack of memory (non-virtual, as in the host).
    void SetAllocError();
    // Marks the archive failed because what was read is not acceptable to the object reading it
    // (a value out of its domain); the message says what.
    void SetDataError(const std::string& message) { Fail(message); }

    bool Failed() const { return failed_; }
    const std::string& Error() const { return error_; }

protected:
    // Reading: the bytes of input not read yet (-1 when the archive cannot tell).
    virtual std::int64_t BytesLeft() const { return -1; }
    // Enters the failed state; the first message is kept.
    void Fail(const std::string& message);
    // Whether `elements` elements of `valuesPerElement` values (fewer than 1 counts as 1) fit in
    // `bytesLeft` bytes when each value takes at least `bytesPerValue`; exact, no overflow.
    static bool FitsIn(std::int64_t elements, int valuesPerElement, std::int64_t bytesLeft,
                       int bytesPerValue);

private:
    bool failed_ = false;
    std::string error_;
};

} // namespace Korvane
