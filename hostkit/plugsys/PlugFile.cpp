#include "hostkit/plugsys/PlugFile.h"

#include "hostkit/base/ArchiveBytes.h"
#include "hostkit/base/BinarySerializer.h"
#include "hostkit/base/MemStat.h"
#include "hostkit/base/TextSerializer.h"
#include "hostkit/base/User.h"
#include "hostkit/colormodel/ColorModel.h"
#include "hostkit/plugsys/PlugType.h"

namespace Korvane::PlugFile {
namespace {

// Writes the identifier and the plug's data; 0, or a message saying what went wrong.
template <class Archive>
std::string Write(Archive& archive, PlugType& type, Plug& plug) {
    std::string ident = type.Ident();
    archive.Serialize(ident);
    const int result = type.SerializeInstance(&plug, archive);
    archive.Finish();
    if (archive.Failed())
        return archive.Error();
    if (result != 0)
        return "the type's SerializeInstance returned " + std::to_string(result);
    return std::string();
}

// Reads the identifier, creates a plug of that type and lets the type read it.
template <class Archive>
PlugRef Read(Archive& archive, int version, const std::string& file, std::string& error) {
    const long long failures = MemStats::FailuresOnThisThread();
    std::string ident;
    archive.Serialize(ident);
    if (archive.Failed()) {
        error = file + archive.Error();
        return PlugRef();
    }
    PlugType* type = PlugType::Find(ident.c_str());
    if (!type) {
        error = file + "unknown plug type \"" + ident + "\"";
        return PlugRef();
    }
    if (!type->SupportsSerialization()) {
        error = file + "plugs of type \"" + ident + "\" cannot be serialized";
        return PlugRef();
    }
    PlugRef plug = type->NewInstance();
    if (!plug) {
        error = file + "type \"" + ident + "\" could not create a plug (out of memory)";
        return PlugRef();
    }
    const int result = type->SerializeInstance(plug.Get(), archive);
    archive.Finish();
    if (!archive.Failed() && result == 0 && MemStats::FailuresOnThisThread() != failures)
        archive.SetAllocError();
    if (archive.Failed() || result != 0) {
        error = file + (archive.Failed()
                            ? archive.Error()
                            : "the type's SerializeInstance returned " + std::to_string(result));
        return PlugRef(); // the half-read plug is released with `plug`
    }
    if (const auto* model = dynamic_cast<const ColorModel*>(plug.Get())) {
        const int points = model->GetWaveLengths().Count();
        if (points > kMaxGridPoints) {
            error = file + "a wavelength grid of " + std::to_string(points) +
                    " points is more than the " + std::to_string(kMaxGridPoints) +
                    " that a plug file may hold";
            return PlugRef();
        }
    }
    plug.Get()->OnLoad(version);
    if (MemStats::FailuresOnThisThread() != failures) {
        // The plug's own code may have absorbed the failure (tables left empty, a converter not
        // made); what it built is not trusted.
        error = file + "memory ran out while the plug was read; the plug is not handed out";
        return PlugRef();
    }
    error.clear();
    return plug;
}

} // namespace

int Save(const Plug& plug, const char* path, ArchiveFormat format) {
    if (!path || !*path)
        return User()->InternalError("PlugFile: cannot write a plug without a file name");
    const char* file = path;
    PlugType* type = plug.ObjType();
    if (!type)
        return User()->InternalError("PlugFile: cannot write \"%s\": the plug has no type", file);
    if (!type->SupportsSerialization())
        return User()->InternalError(
            "PlugFile: cannot write \"%s\": plugs of type \"%s\" cannot be serialized", file,
            type->Ident().c_str());
    // Writing does not change the plug; SerializeInstance takes it non-const because the same
    // routine also reads.
    Plug& source = const_cast<Plug&>(plug);
    std::string problem;
    std::string bytes;
    if (format == ArchiveFormat::Binary) {
        BinarySerializer archive;
        problem = Write(archive, *type, source);
        bytes = archive.Bytes();
    } else {
        TextSerializer archive;
        problem = Write(archive, *type, source);
        bytes = archive.Text();
    }
    if (!problem.empty())
        return User()->InternalError("PlugFile: cannot write \"%s\" (type \"%s\"): %s", file,
                                     type->Ident().c_str(), problem.c_str());
    if (!ArchiveBytes::WriteFile(path, bytes, problem))
        return User()->ErrorMessageEx("PlugFile: %s", problem.c_str());
    return 0;
}

PlugRef Load(const char* path, std::string& error) {
    if (!path || !*path) {
        error = "PlugFile: cannot read a plug without a file name";
        return PlugRef();
    }
    std::string bytes;
    if (!ArchiveBytes::ReadFile(path, bytes, error)) {
        error = "PlugFile: " + error;
        return PlugRef();
    }
    const std::string file = std::string("PlugFile: cannot read \"") + path + "\": ";
    if (BinarySerializer::Recognises(bytes)) {
        BinarySerializer archive(std::move(bytes));
        return Read(archive, static_cast<int>(BinarySerializer::kVersion), file, error);
    }
    if (TextSerializer::Recognises(bytes)) {
        TextSerializer archive(std::move(bytes));
        return Read(archive, TextSerializer::kVersion, file, error);
    }
    error = file + "not a plug file (neither a binary nor a text archive)";
    return PlugRef();
}

} // namespace Korvane::PlugFile
