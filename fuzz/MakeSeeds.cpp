// Writes the seed corpora of the fuzz targets: every plug type of the library that can be saved
// (each model type, each holder type), in both archive formats. Holders are filled first, so
// that the seeds reach the readers' loops: a value in every colour, spectral colours with
// samples, arrays and matrices with elements. An archive seed also carries the operations that
// read its archive through, recorded from the type's own reading routine.
// Usage: korvane_fuzz_seeds <plug-file corpus dir> <archive corpus dir>
#include "fuzz/FuzzSupport.h"
#include "hostkit/base/ArchiveBytes.h"
#include "hostkit/base/BinarySerializer.h"
#include "hostkit/base/TextSerializer.h"
#include "hostkit/plugsys/PlugFile.h"
#include "hostkit/plugsys/PlugType.h"
#include "plugin/holders/ArrayLgtColorHold.h"
#include "plugin/holders/ColorHold.h"
#include "plugin/holders/MatrixLgtColorHold.h"
#include "tests/support/ColourPattern.h"

#include <cstdint>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

using namespace Korvane;

namespace {

// ---- filling the holders ----

// A colour filled with the tests' pattern (a finding when it cannot be sized).
template <class C>
void Pattern(C& c, double seed) {
    if (!Testing::FillPattern(c, seed))
        Fuzz::Finding("cannot size a seed's spectral colour");
}

template <class K>
bool FillOne(Plug& plug) {
    auto* holder = dynamic_cast<ColorHold<K>*>(&plug);
    if (holder)
        Pattern(holder->Value(), 1.5);
    return holder != nullptr;
}

template <class M>
bool FillOf(Plug& plug) {
    if (FillOne<LgtColor<M>>(plug) || FillOne<RayColor<M>>(plug) || FillOne<SurfColor<M>>(plug) ||
        FillOne<ScalarColor<M>>(plug) || FillOne<DualLgtColor<M>>(plug))
        return true;
    if (auto* array = dynamic_cast<ArrayLgtColorHold<M>*>(&plug)) {
        if (array->Resize(2) != 0)
            Fuzz::Finding("cannot size a seed's array");
        for (int i = 0; i < 2; ++i)
            Pattern(array->Colours()[i], 2.0 + i);
        return true;
    }
    if (auto* matrix = dynamic_cast<MatrixLgtColorHold<M>*>(&plug)) {
        if (matrix->Resize(2, 2) != 0)
            Fuzz::Finding("cannot size a seed's matrix");
        for (int r = 0; r < 2; ++r)
            for (int c = 0; c < 2; ++c)
                Pattern(matrix->Colours()(r, c), 4.0 + 2 * r + c);
        return true;
    }
    return false;
}

// A holder of any model filled; a model is saved as its type makes it.
void Fill(Plug& plug) {
    (void)(FillOf<BWModel<Unpolarized>>(plug) || FillOf<BWModel<StokesPolarization>>(plug) ||
           FillOf<RGBModel<Unpolarized>>(plug) || FillOf<RGBModel<StokesPolarization>>(plug) ||
           FillOf<SpectralModel<Unpolarized>>(plug) ||
           FillOf<SpectralModel<StokesPolarization>>(plug));
}

// ---- recording the operations of a read ----

const char* const kNames[] = {"Data", "Color", "Wavelengths", "EquiDistant", ""};

// Reads through another archive and records each exchange as the archive target's operation
// byte (fuzz/ArchiveFuzz.cpp). An exchange the operations cannot express ends the recording.
class Recorder final : public Serializer {
public:
    explicit Recorder(Serializer& inner) : inner_(inner) {}

    std::vector<std::uint8_t> ops;

    bool IsReading() const override { return true; }
    int OpenGroup(const char* name) override {
        Put(0, NameIndex(name));
        return Mirror(inner_.OpenGroup(name));
    }
    int CloseGroup() override {
        Put(1, 0);
        return Mirror(inner_.CloseGroup());
    }
    void Serialize(double& v) override { Put(2, 0), inner_.Serialize(v), Mirror(0); }
    void Serialize(std::int32_t& v) override { Put(3, 0), inner_.Serialize(v), Mirror(0); }
    void Serialize(std::int64_t& v) override { Put(4, 0), inner_.Serialize(v), Mirror(0); }
    void Serialize(double* values, int n) override {
        if (lastCount_ > 0 && n % lastCount_ == 0 && n / lastCount_ >= 1 && n / lastCount_ <= 16)
            Put(10, n / lastCount_ - 1);
        else if (n >= 0 && n <= 15)
            Put(5, n);
        else
            Put(-1, 0);
        inner_.Serialize(values, n);
        Mirror(0);
    }
    void Serialize(const char* name, bool& flag, bool defaultValue) override {
        Put(6, NameIndex(name));
        inner_.Serialize(name, flag, defaultValue);
        Mirror(0);
    }
    void Serialize(std::string& text) override { Put(7, 0), inner_.Serialize(text), Mirror(0); }
    void SerializeCount(std::int32_t& n, int valuesPerElement) override {
        Put(valuesPerElement >= 1 && valuesPerElement <= 16 ? 8 : -1, valuesPerElement - 1);
        inner_.SerializeCount(n, valuesPerElement);
        lastCount_ = n;
        Mirror(0);
    }
    bool CanHold(std::int64_t elements, int valuesPerElement) override {
        const bool can = inner_.CanHold(elements, valuesPerElement);
        Mirror(0);
        return can;
    }
    void Finish() { Put(11, 0); }

private:
    static int NameIndex(const char* name) {
        for (int i = 0; i < 5; ++i)
            if (std::strcmp(name, kNames[i]) == 0)
                return i;
        return -1;
    }
    void Put(int op, int argument) {
        if (op < 0 || argument < 0 || argument > 15)
            stopped_ = true;
        if (!stopped_)
            ops.push_back(static_cast<std::uint8_t>(op | (argument << 4)));
    }
    int Mirror(int result) {
        if (inner_.Failed())
            Fail(inner_.Error());
        return result;
    }

    Serializer& inner_;
    std::int32_t lastCount_ = 0;
    bool stopped_ = false;
};

// The operations that read `bytes` (an archive of `format`) as PlugFile::Load does.
std::vector<std::uint8_t> ReadOperations(const std::string& bytes, ArchiveFormat format) {
    auto record = [](Serializer& archive) {
        Recorder recorder(archive);
        std::string ident;
        recorder.Serialize(ident);
        if (PlugType* type = PlugType::Find(ident.c_str())) {
            PlugRef plug = type->NewInstance();
            if (plug)
                type->SerializeInstance(plug.Get(), recorder);
        }
        recorder.Finish();
        if (recorder.Failed())
            Fuzz::Finding("a seed does not read back: " + recorder.Error());
        return recorder.ops;
    };
    if (format == ArchiveFormat::Binary) {
        BinarySerializer archive(bytes);
        return record(archive);
    }
    TextSerializer archive(bytes);
    return record(archive);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s <plugfile corpus> <archive corpus>\n", argv[0]);
        return 2;
    }
    Fuzz::Setup();
    const std::string plugs = argv[1];
    const std::string archives = argv[2];
    int written = 0;
    for (PlugType* type : PlugType::Registered()) {
        if (!type->SupportsSerialization())
            continue;
        PlugRef plug = type->NewInstance();
        if (!plug)
            continue;
        Fill(*plug.Get());
        for (ArchiveFormat format : {ArchiveFormat::Binary, ArchiveFormat::Text}) {
            const bool text = format == ArchiveFormat::Text;
            const std::string name = type->Ident() + (text ? ".txt" : ".bin");
            const std::string scratch = plugs + "/.scratch";
            if (PlugFile::Save(*plug.Get(), scratch.c_str(), format) != 0)
                continue;
            std::string bytes, error;
            ArchiveBytes::ReadFile(scratch.c_str(), bytes, error);
            std::remove(scratch.c_str());
            // Plug-file target: a mode byte (0: as read, 1: frame repaired), then the file.
            for (char mode : {'\0', '\1'})
                std::ofstream(plugs + "/" + std::string(1, char('0' + mode)) + name,
                              std::ios::binary)
                    << mode << bytes;
            // Archive target: the mode (format, and with and without the repair), the count of
            // operations, the operations that read the archive through, the archive.
            const std::vector<std::uint8_t> ops = ReadOperations(bytes, format);
            for (int repair : {0, 2}) {
                std::ofstream out(archives + "/" + std::to_string(repair) + name, std::ios::binary);
                out << char((text ? 1 : 0) | repair) << char(ops.size() & 0xFF)
                    << char((ops.size() >> 8) & 0xFF);
                out.write(reinterpret_cast<const char*>(ops.data()),
                          static_cast<std::streamsize>(ops.size()));
                out << bytes;
            }
            ++written;
        }
    }
    std::printf("%d seeds written\n", written);
    return written > 0 ? 0 : 1;
}
